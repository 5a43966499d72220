// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/PartialFile.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <string>

namespace lumetwin::media {
namespace {

std::string partialName(const std::string &name) {
    return PartialFile::nameFor(std::filesystem::path("/films") / name).string();
}

TEST(PartialFile, isCalledLikeItsOutput) {
    EXPECT_EQ(partialName("a.mov"), "/films/a.mov.partial");
    const std::string longest(247, 'x');
    EXPECT_EQ(partialName(longest), "/films/" + longest + ".partial");
}

TEST(PartialFile, cutsALongNameBetweenCharacters) {
    EXPECT_EQ(partialName(std::string(251, 'x') + ".mov"), "/films/" + std::string(247, 'x') + ".partial");
    std::string film;
    for (int character = 0; character < 83; ++character)
        film += "海"; // three bytes
    EXPECT_EQ(partialName(film + ".mov"), "/films/" + film.substr(0, 246) + ".partial");
}

TEST(PartialFile, writesUnderTheLongestNameOfAFile) {
    const test::TemporaryFolder folder;
    const std::filesystem::path output = folder / (std::string(251, 'x') + ".mov");
    PartialFile file(output);
    file.file().writeAt(0, test::Bytes{1, 2, 3});
    EXPECT_FALSE(std::filesystem::exists(output));
    file.finish();
    EXPECT_EQ(test::readFile(output), (test::Bytes{1, 2, 3}));
    EXPECT_FALSE(std::filesystem::exists(PartialFile::nameFor(output)));
}

TEST(PartialFile, replacesWhatWasThereOnlyWhenFinished) {
    const test::TemporaryFolder folder;
    test::writeFile(folder / "a.heic", std::string("before"));
    {
        PartialFile partial(folder / "a.heic");
        partial.file().writeAt(0, test::Bytes{1});
        EXPECT_TRUE(std::filesystem::exists(folder / "a.heic.partial"));
        EXPECT_EQ(test::readFile(folder / "a.heic"), (test::Bytes{'b', 'e', 'f', 'o', 'r', 'e'}));
        partial.discard();
        EXPECT_FALSE(std::filesystem::exists(folder / "a.heic.partial"));
        partial.discard(); // nothing there: nothing happens
    }
    PartialFile partial(folder / "a.heic");
    partial.file().writeAt(0, test::Bytes{2});
    partial.finish();
    EXPECT_EQ(test::readFile(folder / "a.heic"), test::Bytes{2});
}

TEST(PartialFile, ofAnEarlierRunIsKeptUntilTheFirstWrite) {
    const test::TemporaryFolder folder;
    const std::filesystem::path partial = PartialFile::nameFor(folder / "a.mov");
    test::writeFile(partial, std::string("of an earlier run"));
    { const PartialFile file(folder / "a.mov"); }
    EXPECT_EQ(std::filesystem::file_size(partial), 17U);
    {
        const PartialFile file(folder / "a.mov");
        file.file().writeAt(1, test::Bytes{5});
        file.file().writeAt(0, test::Bytes{4});
    }
    EXPECT_EQ(test::readFile(partial), (test::Bytes{4, 5}));
}

TEST(PartialFile, staysWhereItIsNotFinishedUnlessItIsEmpty) {
    const test::TemporaryFolder folder;
    { const PartialFile file(folder / "empty.mov"); }
    EXPECT_FALSE(std::filesystem::exists(PartialFile::nameFor(folder / "empty.mov")));
    {
        const PartialFile file(folder / "begun.mov");
        file.file().writeAt(2, test::Bytes{7});
    }
    EXPECT_EQ(test::readFile(PartialFile::nameFor(folder / "begun.mov")), (test::Bytes{0, 0, 7}));
}

} // namespace
} // namespace lumetwin::media
