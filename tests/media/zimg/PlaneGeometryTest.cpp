// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/zimg/PlaneGeometry.h"
#include "tests/support/Drawing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin::media::zimg {
namespace {

using namespace test;
using testing::ElementsAre;

Picture shape(int width, int height, PictureFormat format = yuv420) {
    Picture picture;
    picture.width = width;
    picture.height = height;
    picture.format = format;
    return picture;
}

TEST(PlaneGeometry, movesWhatIsWholeInEveryPlane) {
    const Placement placement{{0, 0, 64, 32}, {64, 0, 64, 32}, {64, 0, 64, 32}};
    for (int plane = 0; plane < 3; ++plane) {
        const PlaneGeometry geometry = planeGeometry(placement, shape(64, 32), shape(128, 32), plane);
        EXPECT_TRUE(geometry.moved());
        EXPECT_EQ(geometry.x.first, plane == 0 ? 64 : 32);
        EXPECT_EQ(geometry.x.count, plane == 0 ? 64 : 32);
        EXPECT_TRUE(geometry.x.fullyCovered());
    }
}

TEST(PlaneGeometry, movesOddSizesThatBeginTheCanvas) {
    const Placement placement{{0, 0, 63, 31}, {0, 0, 63, 31}, {0, 0, 63, 31}};
    for (int plane = 0; plane < 3; ++plane)
        EXPECT_TRUE(planeGeometry(placement, shape(63, 31), shape(63, 31), plane).moved()) << plane;
}

TEST(PlaneGeometry, scalesChromaAtOddPlaces) {
    const Placement placement{{0, 0, 63, 32}, {63, 0, 63, 32}, {63, 0, 63, 32}};
    EXPECT_TRUE(planeGeometry(placement, shape(63, 32), shape(126, 32), 0).moved());
    const PlaneGeometry chroma = planeGeometry(placement, shape(63, 32), shape(126, 32), 1);
    EXPECT_FALSE(chroma.moved());
    EXPECT_TRUE(chroma.y.moved);
    EXPECT_EQ(chroma.x.first, 31);
    EXPECT_EQ(chroma.x.count, 32);
    EXPECT_EQ(chroma.x.covered.front(), 0.5F);
    EXPECT_DOUBLE_EQ(chroma.x.regionBegin, -0.5);
}

TEST(PlaneGeometry, weighsPixelsByTheAreaThatIsCovered) {
    const Placement placement{{0, 0, 4, 2}, {0.25, 0, 3.25, 2}, {0, 0, 8, 2}};
    const PlaneGeometry geometry = planeGeometry(placement, shape(4, 2), shape(8, 2), 0);
    EXPECT_THAT(geometry.x.covered, ElementsAre(0.75F, 1.0F, 1.0F, 0.5F));
    EXPECT_THAT(geometry.y.covered, ElementsAre(1.0F, 1.0F));
}

TEST(PlaneGeometry, countsOnlyWhatLiesOnTheCanvas) {
    // The last chroma sample of an odd canvas has only one column.
    const Placement placement{{0, 0, 7, 2}, {0, 0, 7, 2}, {0, 0, 7, 2}};
    EXPECT_THAT(planeGeometry(placement, shape(7, 2), shape(7, 2), 1).x.covered, ElementsAre(1.0F, 1.0F, 1.0F, 1.0F));
}

TEST(PlaneGeometry, forgivesTheRoundingOfTheArithmetic) {
    const double fit = 1000.0 / 1920.0;
    const Placement placement{
        {0, 0, 1920, 1080}, {(1000 - fit * 1920) * 0.5, 0, fit * 1920 + 1e-10, 1000}, {0, 0, 1000, 1000}};
    const PlaneGeometry geometry = planeGeometry(placement, shape(1920, 1080), shape(1000, 1000), 0);
    EXPECT_EQ(geometry.x.count, 1000);
    EXPECT_TRUE(geometry.x.fullyCovered());
}

TEST(PlaneGeometry, leavesOutSamplesThatReachBeyondTheSource) {
    const Picture frame = shape(126, 32);
    const Picture canvas = shape(63, 32);
    const PlaneGeometry left = planeGeometry({{0, 0, 63, 32}, {0, 0, 63, 32}, {0, 0, 63, 32}}, frame, canvas, 1);
    EXPECT_EQ(left.x.windowFirst, 0);
    EXPECT_EQ(left.x.windowCount, 31);
    const PlaneGeometry right = planeGeometry({{63, 0, 63, 32}, {0, 0, 63, 32}, {0, 0, 63, 32}}, frame, canvas, 1);
    EXPECT_EQ(right.x.windowFirst, 32);
    EXPECT_EQ(right.x.windowCount, 31);
}

TEST(PlaneGeometry, readsASharedSampleWhenThereIsNoOther) {
    const PlaneGeometry geometry =
        planeGeometry({{3, 0, 1, 8}, {0, 0, 1, 8}, {0, 0, 1, 8}}, shape(8, 8), shape(1, 8), 1);
    EXPECT_EQ(geometry.x.windowFirst, 1);
    EXPECT_EQ(geometry.x.windowCount, 1);
}

TEST(PlaneGeometry, shiftsBetweenChromaLocations) {
    Picture centred = shape(64, 32);
    centred.colour.chromaLocation = ChromaLocation::centre;
    const Placement placement{{0, 0, 64, 32}, {0, 0, 64, 32}, {0, 0, 64, 32}};
    const PlaneGeometry geometry = planeGeometry(placement, centred, shape(64, 32), 1);
    EXPECT_DOUBLE_EQ(geometry.x.regionBegin, -0.25);
    EXPECT_TRUE(geometry.y.moved);
    EXPECT_TRUE(planeGeometry(placement, centred, shape(64, 32), 0).moved());
}

} // namespace
} // namespace lumetwin::media::zimg
