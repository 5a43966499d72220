// SPDX-License-Identifier: GPL-3.0-or-later
// Which images of a photo are its eyes.
#include "tests/engine/photo/SpatialToSBSFixture.h"

#include <vector>

namespace lumetwin::test {
namespace {

TEST_F(SpatialToSBS, twoImagesWithoutAGroupAreNoSpatialPhoto) {
    writeMarkers(64, 64);
    renameBox(file("in.heic"), "grpl", "free");
    EXPECT_EQ(failure(), "This is not a spatial photo: No stereo pair group found");
    writeMarkers(64, 64);
    renameBox(file("in.heic"), "ster", "altr");
    EXPECT_EQ(failure(), "This is not a spatial photo: No stereo pair group found");
    output({"convert", "-size", "8x8", "xc:red", "xc:blue", "TIFF:" + file("in.heic").string()});
    EXPECT_EQ(failure(), "This is not a spatial photo: No stereo pair group found");
}

TEST_F(SpatialToSBS, aGroupThatNamesNobodyMeansTheFirstTwoImages) {
    writeMarkers(64, 64);
    setStereoGroup(file("in.heic"), {});
    const Raster picture = convert();
    expectNear(picture, 10, 10, red);
    expectNear(picture, 100, 10, blue);
}

TEST_F(SpatialToSBS, aGroupThatLacksAnImageMeansTheFirstTwo) {
    writeMarkers(64, 64);
    const auto ids = stereoGroup(file("in.heic"));
    for (const auto &incomplete :
         {std::vector<std::uint32_t>{ids[1]}, {ids[1], 4711}, {4711, ids[0]}, {4711, 4712}, {0, 0}}) {
        setStereoGroup(file("in.heic"), incomplete);
        const Raster picture = convert();
        expectNear(picture, 10, 10, red);
        expectNear(picture, 100, 10, blue);
        writeMarkers(64, 64);
    }
}

TEST_F(SpatialToSBS, aGroupThatNamesOneImageTwiceShowsItTwice) {
    writeMarkers(64, 64);
    const auto ids = stereoGroup(file("in.heic"));
    setStereoGroup(file("in.heic"), {ids[1], ids[1]});
    for (const int x : {10, 100})
        expectNear(convert(), x, 10, blue);
}

} // namespace
} // namespace lumetwin::test
