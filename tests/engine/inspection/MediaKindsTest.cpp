// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/MediaKinds.h"
#include "engine/batch/InputList.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace lumetwin {
namespace {

TEST(MediaKinds, ExtensionsAreComparedInLowerCase) {
    EXPECT_EQ(lowerCasedExtension("/a/trip.MOV"), "mov");
    EXPECT_EQ(lowerCasedExtension("a.b.HeIc"), "heic");
    EXPECT_EQ(lowerCasedExtension("/a.mov/file"), "");
    EXPECT_EQ(lowerCasedExtension(".mov"), "");
    EXPECT_EQ(lowerCasedExtension(".x.mov"), "mov");
    EXPECT_EQ(lowerCasedExtension("x."), "");
    EXPECT_EQ(lowerCasedExtension("folder.mov/"), "mov");
    EXPECT_EQ(lowerCasedExtension(""), "");
}

TEST(MediaKinds, EveryKnownExtensionHasOneKind) {
    for (const auto extension : videoExtensions) {
        EXPECT_TRUE(isVideoFile("x." + std::string(extension)));
        EXPECT_FALSE(isPhotoFile("x." + std::string(extension)));
    }
    for (const auto extension : furtherVideoExtensions) {
        EXPECT_TRUE(isVideoFile("x." + std::string(extension)));
        EXPECT_FALSE(isPhotoFile("x." + std::string(extension)));
    }
    const auto expectPhoto = [](std::string_view extension) {
        EXPECT_TRUE(isPhotoFile("x." + std::string(extension))) << extension;
        EXPECT_FALSE(isVideoFile("x." + std::string(extension))) << extension;
    };
    std::ranges::for_each(photoExtensions, expectPhoto);
    std::ranges::for_each(furtherPhotoExtensions, expectPhoto);
    EXPECT_TRUE(isMediaFile("DSCF0001.MPO"));
    for (const char *other : {"x", "x.txt", "x.movie", "x.webp", "x.mo", "mov", ".mov"})
        EXPECT_FALSE(isMediaFile(other)) << other;
}

TEST(InputList, HiddenFilesAreNotVisible) {
    test::TemporaryFolder folder;
    for (const char *name : {"a", ".b", "..c", "d."})
        test::writeFile(folder / name, std::string());
    EXPECT_THAT(visibleChildren(folder.path()), testing::UnorderedElementsAre(folder / "a", folder / "d."));
}

std::vector<std::string> places(const std::vector<ListedFile> &files) {
    std::vector<std::string> result;
    for (const ListedFile &listed : files)
        result.push_back(listed.file.generic_string());
    return result;
}

TEST(InputList, OnlyMediaFilesAreKept) {
    EXPECT_THAT(places(mediaFiles({"a.txt", "b.PNG", "c", "d.mov"})), testing::ElementsAre("b.PNG", "d.mov"));
}

TEST(InputList, SortsByNameNotByPlace) {
    EXPECT_THAT(places(mediaFiles({"/1/b.mov", "/2/a.mov", "/9/B.mov", "/0/b.mov", "/3/IMG_9.png", "/3/IMG_10.png"})),
                testing::ElementsAre("/9/B.mov", "/3/IMG_10.png", "/3/IMG_9.png", "/2/a.mov", "/1/b.mov", "/0/b.mov"));
}

TEST(InputList, TreeIsListedFolderByFolderAndKeepsItsPlaces) {
    test::TemporaryFolder folder;
    for (const char *name : {"b", "a/deep", ".hidden", "out"})
        std::filesystem::create_directories(folder / name);
    for (const char *name :
         {"z.mov", "b/2.jpg", "b/1.jpg", "a/3.mov", "a/deep/4.mov", "a/notes.txt", ".hidden/5.mov", "out/6.mov"})
        test::writeFile(folder / name, std::string("x"));
    std::filesystem::create_directory_symlink(folder.path(), folder / "a" / "loop");
    std::vector<std::string> seen;
    for (const ListedFile &listed : mediaTree(folder.path(), folder / "out"))
        seen.push_back(listed.folder.generic_string() + "|" + listed.file.filename().string());
    EXPECT_THAT(seen, testing::ElementsAre("|z.mov", "a|3.mov", "a/deep|4.mov", "b|1.jpg", "b|2.jpg"));
}

} // namespace
} // namespace lumetwin
