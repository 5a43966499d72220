// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/OutputGuard.h"

#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace lumetwin {
namespace {

class Guard : public testing::Test {
protected:
    Guard() {
        setTextLocale("en");
        std::filesystem::create_directory(folder / "in");
        std::filesystem::create_directory(folder / "out");
        for (const auto &input : inputs)
            test::writeFile(input, std::string("x"));
    }

    std::string complaint(const std::filesystem::path &output) {
        try {
            OutputGuard(inputs).check(inputs[0], output);
        } catch (const ProcessorError &error) {
            return error.what();
        }
        return {};
    }

    test::TemporaryFolder folder;
    const std::vector<std::filesystem::path> inputs{folder / "in/a.mov", folder / "in/a_sbs.mp4"};
    const std::string refusal = "Converting a.mov would overwrite a_sbs.mp4, which is also an input.";
};

TEST_F(Guard, OtherPlacesAreFree) {
    EXPECT_EQ(complaint(folder / "out/a_sbs.mp4"), "");
    test::writeFile(folder / "out/a_sbs.mp4", std::string("older"));
    EXPECT_EQ(complaint(folder / "out/a_sbs.mp4"), "");
}

TEST_F(Guard, ItselfIsAnInputToo) {
    EXPECT_EQ(complaint(folder / "in/a.mov"), "Converting a.mov would overwrite a.mov, which is also an input.");
}

TEST_F(Guard, OtherSpellingsOfThePlaceAreFound) {
    EXPECT_EQ(complaint(folder / "in/a_sbs.mp4"), refusal);
    EXPECT_EQ(complaint(folder / "out/../in/./a_sbs.mp4"), refusal);
}

TEST_F(Guard, LinkedFoldersAreFound) {
    std::filesystem::create_directory_symlink(folder / "in", folder / "linked");
    EXPECT_EQ(complaint(folder / "linked/a_sbs.mp4"), refusal);
}

TEST_F(Guard, LinkedFilesAreFound) {
    std::filesystem::create_symlink(inputs[1], folder / "out/a_sbs.mp4");
    EXPECT_EQ(complaint(folder / "out/a_sbs.mp4"), refusal);
    std::filesystem::create_hard_link(inputs[1], folder / "out/hard.mp4");
    EXPECT_EQ(complaint(folder / "out/hard.mp4"), refusal);
}

TEST_F(Guard, RelativePathsAreFound) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder / "in");
    const std::string words = complaint("./a_sbs.mp4");
    std::filesystem::current_path(before);
    EXPECT_EQ(words, refusal);
}

TEST_F(Guard, InputThatWasReplacedMeanwhileIsStillAnInput) {
    const OutputGuard guard(inputs);
    std::filesystem::remove(inputs[1]);
    test::writeFile(folder / "new", std::string("newer"));
    std::filesystem::rename(folder / "new", inputs[1]);
    EXPECT_THROW(guard.check(inputs[0], inputs[1]), ProcessorError);
}

TEST_F(Guard, InputThatIsAPipeIsNotWaitedFor) {
    std::filesystem::remove(inputs[0]);
    ASSERT_EQ(mkfifo(inputs[0].c_str(), 0600), 0);
    EXPECT_EQ(complaint(folder / "out/a_sbs.mp4"), "a.mov is not a regular file.");
}

TEST_F(Guard, InputThatIsADeviceIsNotRead) {
    std::filesystem::remove(inputs[0]);
    std::filesystem::create_symlink("/dev/zero", inputs[0]);
    EXPECT_EQ(complaint(folder / "out/a_sbs.mp4"), "a.mov is not a regular file.");
}

TEST_F(Guard, InputsThatTheRunSkipsMayBeReplaced) {
    const OutputGuard skipsTheSecond(inputs, [](std::size_t index) { return index == 0; });
    EXPECT_NO_THROW(skipsTheSecond.check(inputs[0], inputs[1]));
    EXPECT_THROW(skipsTheSecond.check(inputs[1], inputs[0]), ProcessorError);
}

TEST_F(Guard, SourceItselfIsNeverReplacedWhateverIsSkipped) {
    const OutputGuard skipsAll(inputs, [](std::size_t) { return false; });
    EXPECT_THROW(skipsAll.check(inputs[0], inputs[0]), ProcessorError);
    std::filesystem::create_symlink(inputs[0], folder / "out/a_sbs.mp4");
    EXPECT_THROW(skipsAll.check(inputs[0], folder / "out/a_sbs.mp4"), ProcessorError);
}

} // namespace
} // namespace lumetwin
