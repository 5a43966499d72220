// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/StereoEvidence.h"
#include "tests/engine/stereo/ReducedEyes.h"
#include "tests/support/Drawing.h"
#include "tests/support/StereoScenes.h"

#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

StereoEvidence evidenceOf(const media::EyePair<Picture> &eyes) {
    return stereoEvidence(planeOf(eyes.left), planeOf(eyes.right));
}

TEST(StereoEvidence, seesTwoEyesAndMeasuresThem) {
    const StereoEvidence evidence = evidenceOf(drawnEyes({.far = 1.5, .near = -1.0}));
    EXPECT_TRUE(evidence.isStereo());
    EXPECT_TRUE(evidence.isLevel());
    EXPECT_FALSE(evidence.looksFlat());
    EXPECT_NEAR(evidence.figures.farthest, 1.5, 0.06);
    EXPECT_GT(evidence.figures.nearest, -1.0);
    EXPECT_LT(evidence.figures.nearest, -0.5);
    EXPECT_NEAR(evidence.figures.vertical, 0, 0.02);
}

TEST(StereoEvidence, exchangedEyesHaveTheOppositeDisparity) {
    const media::EyePair<Picture> eyes = drawnEyes({.far = 1.5, .near = -1.0});
    const StereoEvidence right = evidenceOf(eyes);
    const StereoEvidence wrong = evidenceOf({eyes.right, eyes.left});
    EXPECT_NEAR(right.figures.farthest, -wrong.figures.nearest, 0.05);
    EXPECT_NEAR(right.figures.nearest, -wrong.figures.farthest, 0.1);
    EXPECT_GT(right.slope, 0.5);
    EXPECT_LT(wrong.slope, -0.5);
}

TEST(StereoEvidence, measuresTheHeightOfTheEyes) {
    const StereoEvidence lower = evidenceOf(drawnEyes({.lower = 0.6}));
    EXPECT_NEAR(lower.figures.vertical, 0.6, 0.05);
    EXPECT_FALSE(lower.isLevel());
    const StereoEvidence higher = evidenceOf(drawnEyes({.lower = -0.6}));
    EXPECT_NEAR(higher.figures.vertical, -0.6, 0.05);
}

TEST(StereoEvidence, seesTurnedEyes) {
    const StereoEvidence turned = evidenceOf(drawnEyes({.turn = 1.2}));
    EXPECT_TRUE(turned.isStereo() || turned.isUnalignedStereo());
    EXPECT_FALSE(turned.isLevel());
    EXPECT_NEAR(turned.figures.vertical, 0, 0.1);
    EXPECT_GT(turned.unevenness, 0.6);
}

TEST(StereoEvidence, onePictureTwiceIsFlat) {
    const StereoEvidence evidence = evidenceOf(drawnEyes({.far = 0.7, .near = 0.7, .things = 0}));
    EXPECT_TRUE(evidence.isStereo());
    EXPECT_TRUE(evidence.looksFlat());
    EXPECT_FALSE(evidenceOf(drawnEyes({.far = 0.7, .near = 0.2})).looksFlat());
}

TEST(StereoEvidence, otherPicturesAreNoEyes) {
    for (unsigned seed = 1; seed <= 10; ++seed) {
        const StereoEvidence evidence = evidenceOf({drawnTexture(640, 360, seed), drawnTexture(640, 360, seed + 100)});
        EXPECT_FALSE(evidence.isStereo()) << seed;
        EXPECT_FALSE(evidence.isUnalignedStereo()) << seed;
        EXPECT_TRUE(evidence.isTelling()) << seed;
    }
}

TEST(StereoEvidence, aRepeatedPatternIsNoPairOfEyes) {
    const auto tiles = [](int period) {
        return drawn(640, 360, grey8, [&](int, int x, int y) {
            return 40 + 150 * ((x / period + y / period) % 2) + (x % period) * 20 / period;
        });
    };
    for (const int period : {11, 20, 33, 64, 80, 107}) {
        const StereoEvidence evidence = evidenceOf({tiles(period), tiles(period)});
        EXPECT_FALSE(evidence.isStereo()) << period << " correlated " << evidence.correlated;
    }
}

TEST(StereoEvidence, brickworkIsNoPairOfEyes) {
    // Lines between bricks, each second row moved by half a brick; of any size, so also beside the blocks that are
    // asked.
    for (const int brick : {40, 64, 94, 120})
        for (const int line : {3, 6}) {
            const auto wall = drawn(512, 288, grey8, [&](int, int x, int y) {
                const int row = y / (brick / 2);
                const bool isLine = y % (brick / 2) < line || (x + row % 2 * brick / 2) % brick < line;
                return isLine ? 0 : 255;
            });
            EXPECT_FALSE(evidenceOf({wall, wall}).isStereo()) << brick << ", " << line;
        }
}

TEST(StereoEvidence, evenPicturesTellNothing) {
    EXPECT_FALSE(evidenceOf({flat(640, 360, grey8, 90), flat(640, 360, grey8, 130)}).isTelling());
}

TEST(StereoEvidence, toleratesOtherBrightness) {
    media::EyePair<Picture> eyes = drawnEyes({});
    eachSample(eyes.right, [&](int, int x, int y) {
        std::uint8_t &value = eyes.right.planes[0].data[y * eyes.right.planes[0].stride + x];
        value = static_cast<std::uint8_t>(20 + value * 7 / 10);
    });
    EXPECT_TRUE(evidenceOf(eyes).isStereo());
}

TEST(StereoEvidence, planesOfOtherSizesHaveNoBlocks) {
    const LumaPlane small{8, 8, std::vector<float>(64)};
    const LumaPlane plane{64, 64, std::vector<float>(64 * 64)};
    EXPECT_TRUE(disparityMap(small, small).blocks.empty());
    EXPECT_TRUE(disparityMap(plane, small).blocks.empty());
    EXPECT_EQ(disparityMap(plane, plane).blocks.size(), 4U);
}

} // namespace
} // namespace lumetwin::test
