// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/MediaKinds.h"
#include "engine/InputList.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    for (const auto extension : photoExtensions) {
        EXPECT_TRUE(isPhotoFile("x." + std::string(extension)));
        EXPECT_FALSE(isVideoFile("x." + std::string(extension)));
    }
    for (const char *other : {"x", "x.txt", "x.movie", "x.webp", "x.mo", "mov", ".mov"})
        EXPECT_FALSE(isMediaFile(other)) << other;
}

TEST(InputList, HiddenFilesAreNotVisible) {
    test::TemporaryFolder folder;
    for (const char *name : {"a", ".b", "..c", "d."})
        test::writeFile(folder / name, std::string());
    EXPECT_THAT(visibleChildren(folder.path()), testing::UnorderedElementsAre(folder / "a", folder / "d."));
}

TEST(InputList, MediaFilesKeepTheirOrder) {
    EXPECT_THAT(mediaFiles({"z.mov", "a.txt", "b.PNG", "a.mov"}), testing::ElementsAre("z.mov", "b.PNG", "a.mov"));
}

TEST(InputList, SortsByNameNotByPlace) {
    std::vector<std::filesystem::path> files{"/1/b.mov", "/2/a.mov", "/9/B.mov", "/0/b.mov", "/3/IMG_9", "/3/IMG_10"};
    sortByName(files);
    EXPECT_THAT(files, testing::ElementsAre("/9/B.mov", "/3/IMG_10", "/3/IMG_9", "/2/a.mov", "/1/b.mov", "/0/b.mov"));
}

} // namespace
} // namespace lumetwin
