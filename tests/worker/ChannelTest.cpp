// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/protocol/Channel.h"
#include "tests/support/TestMedia.h"
#include "worker/protocol/Answer.h"
#include "worker/protocol/ProtocolError.h"

#include <array>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <random>
#include <sys/socket.h>

namespace lumetwin::worker {
namespace {

using namespace std::chrono_literals;

struct Ends {
    std::pair<media::Descriptor, media::Descriptor> sockets = Channel::makePair();
    int rawNumber = sockets.first.get();
    Channel one{std::move(sockets.first)};
    Channel other{std::move(sockets.second)};

    void sendRaw(const std::vector<std::uint8_t> &bytes) const {
        ASSERT_EQ(send(rawNumber, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
    }
};

TEST(Channel, CarriesMessagesAndDescriptors) {
    Ends ends;
    const test::TemporaryFolder folder;
    test::writeFile(folder / "file", std::string("content"));
    const media::Descriptor file(open((folder / "file").c_str(), O_RDONLY));
    ASSERT_TRUE(ends.one.send({{"name", "é\xff"}, {"number", 1.5}}, std::array{file.get()}));
    ASSERT_TRUE(ends.other.wait(1s));
    const auto message = ends.other.receive(1);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->content["name"], "é\xff") << "names need not be UTF-8";
    EXPECT_EQ(message->content["number"], 1.5);
    ASSERT_EQ(message->descriptors.size(), 1u);
    char first = 0;
    EXPECT_EQ(pread(message->descriptors[0].get(), &first, 1, 0), 1);
    EXPECT_EQ(first, 'c');
    EXPECT_TRUE(fcntl(message->descriptors[0].get(), F_GETFD) & FD_CLOEXEC);
}

TEST(Channel, TellsItsEnd) {
    Ends ends;
    EXPECT_FALSE(ends.other.wait(1ms));
    { const Channel gone = std::move(ends.one); }
    EXPECT_TRUE(ends.other.wait(1s));
    EXPECT_FALSE(ends.other.receive());
    EXPECT_FALSE(ends.other.send({{"a", 1}}));
}

TEST(Channel, RefusesWhatIsTooLarge) {
    Ends ends;
    EXPECT_THROW(ends.one.send({{"text", std::string(Channel::largestMessage, 'x')}}), ProtocolError);
    ends.sendRaw(std::vector<std::uint8_t>(Channel::largestMessage + 1, 0xa0));
    EXPECT_THROW(ends.other.receive(), ProtocolError);
}

TEST(Channel, RefusesDescriptorsThatWereNotExpected) {
    Ends ends;
    ends.one.send({{"a", 1}}, std::array{0, 0});
    EXPECT_THROW(ends.other.receive(1), ProtocolError);
    ends.one.send({{"a", 1}}, std::array{0});
    EXPECT_THROW(ends.other.receive(0), ProtocolError);
}

TEST(Channel, SurvivesNestingWithoutEnd) {
    EXPECT_THROW(contentOf(std::vector<std::uint8_t>(Channel::largestMessage, 0x81)), ProtocolError);
    EXPECT_THROW(contentOf(std::vector<std::uint8_t>(Channel::largestMessage, 0xbf)), ProtocolError);
}

TEST(Channel, RefusesRubbish) {
    for (const std::vector<std::uint8_t> &bytes : {std::vector<std::uint8_t>{},
                                                   {0xff},
                                                   {0x01},
                                                   {0xa1},
                                                   {0xa0, 0x00},
                                                   {0x9b, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff},
                                                   {0x7b, 0x7f, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff},
                                                   {0xc1, 0x00}})
        EXPECT_THROW(contentOf(bytes), ProtocolError);
    EXPECT_EQ(contentOf(std::vector<std::uint8_t>{0xa0}), nlohmann::json::object());
}

/// Whether the bytes are a valid answer. All others must cause a ProtocolError.
bool isAnswer(const std::vector<std::uint8_t> &bytes) {
    try {
        decodeAnswer(contentOf(bytes));
        return true;
    } catch (const ProtocolError &) {
        return false;
    }
}

TEST(Channel, SurvivesChangedAnswers) {
    const std::array<Answer, 5> answers{
        Ready{"0.1.0", {}}, Progress{3, 9}, SignOfLife{},
        Outcome{.written = true,
                .framesWritten = 4,
                .framesExpected = 0,
                .warnings = {{WarningKind::framesMissing, {std::int64_t{1}, std::int64_t{2}}}}},
        Failure{std::make_exception_ptr(std::runtime_error("words"))}};
    std::mt19937 random(16);
    int understood = 0;
    for (int round = 0; round < 20'000; ++round) {
        auto bytes = nlohmann::json::to_cbor(encode(answers[round % answers.size()]));
        ASSERT_TRUE(isAnswer(bytes));
        for (std::uint32_t changes = random() % 4 + 1; changes > 0; --changes)
            bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
        if (round % 7 == 0)
            bytes.resize(random() % bytes.size());
        understood += isAnswer(bytes);
    }
    EXPECT_LT(understood, 20'000);
}

} // namespace
} // namespace lumetwin::worker
