// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/UpToDate.h"

#include "media/InputFile.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>

namespace lumetwin {
namespace {

using Path = std::filesystem::path;

class UpToDate : public testing::Test {
protected:
    UpToDate() {
        test::writeFile(source, std::string("source"));
        test::ffmpeg({"-f", "lavfi", "-i", "color=size=64x64:rate=10:duration=0.5", "-c:v", "libx264", movie});
        test::ffmpeg({"-f", "lavfi", "-i", "color=size=64x64", "-frames:v", "1", photo});
        for (const Path &output : {movie, photo})
            age(output, -10);
    }

    /// Makes a file so many seconds older (or, below 0, newer) than the source.
    void age(const Path &file, int seconds) {
        std::filesystem::last_write_time(file,
                                         std::filesystem::last_write_time(source) - std::chrono::seconds(seconds));
    }

    void replaceContent(const Path &file, const std::string &content) {
        test::writeFile(file, content);
        age(file, -10);
    }

    bool isUpToDate(const Path &input, const Path &output) const {
        return lumetwin::isUpToDate(input, output, MediaOperations::inProcess());
    }

    test::TemporaryFolder folder;
    const Path source = folder / "a.mov";
    const Path movie = folder / "a_sbs.mp4";
    const Path photo = folder / "a_sbs.png";
};

TEST_F(UpToDate, WholeAndNewerThanItsSource) {
    EXPECT_TRUE(isUpToDate(source, movie));
    EXPECT_TRUE(isUpToDate(source, photo));
}

TEST_F(UpToDate, OlderThanItsSourceOrOfTheSameTime) {
    for (const Path &output : {movie, photo})
        for (const int seconds : {0, 10}) {
            age(output, seconds);
            EXPECT_FALSE(isUpToDate(source, output)) << output << seconds;
        }
}

TEST_F(UpToDate, EmptyOrSomethingElse) {
    for (const Path &output : {movie, photo})
        for (const char *content : {"", "just words, and quite a few of them at that"}) {
            replaceContent(output, content);
            EXPECT_FALSE(isUpToDate(source, output)) << output << content;
        }
}

TEST_F(UpToDate, MovieWithoutItsEnd) {
    test::Bytes bytes = test::readFile(movie);
    bytes.resize(bytes.size() / 2); // its index is at the end
    test::writeFile(movie, bytes);
    age(movie, -10);
    EXPECT_FALSE(isUpToDate(source, movie));
}

TEST_F(UpToDate, IsAskedOfTheOperations) {
    MediaOperations operations;
    operations.look = [](const media::InputFile &) -> MediaFacts { throw std::runtime_error("a crash"); };
    EXPECT_FALSE(lumetwin::isUpToDate(source, movie, operations));
    operations.look = [](const media::InputFile &) {
        MediaFacts facts;
        facts.isReadable = true;
        return facts;
    };
    replaceContent(movie, "what only the operations can read");
    EXPECT_TRUE(lumetwin::isUpToDate(source, movie, operations));
}

TEST_F(UpToDate, NotThereOrNoFile) {
    std::filesystem::create_directory(folder / "b_sbs.mp4");
    EXPECT_FALSE(isUpToDate(source, folder / "b_sbs.mp4"));
    EXPECT_FALSE(isUpToDate(source, folder / "gone.mp4"));
    EXPECT_FALSE(isUpToDate(folder / "gone.mov", movie)) << "nobody knows how old it was";
}

} // namespace
} // namespace lumetwin
