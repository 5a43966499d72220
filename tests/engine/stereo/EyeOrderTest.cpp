// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/EyeOrder.h"
#include "engine/stereo/DenseDisparity.h"
#include "tests/engine/stereo/ReducedEyes.h"
#include "tests/support/Drawing.h"
#include "tests/support/StereoScenes.h"

#include <gtest/gtest.h>

#include <array>

namespace lumetwin::test {
namespace {

EyeOrderCues cuesOf(const media::EyePair<Picture> &eyes) {
    const media::EyePair<LumaPlane> planes{planeOf(eyes.left), planeOf(eyes.right)};
    return eyeOrderCues(planes, stereoEvidence(disparityMap(planes.left, planes.right)));
}

EyeOrderCues exchangedCuesOf(const media::EyePair<Picture> &eyes) {
    return cuesOf({eyes.right, eyes.left});
}

TEST(DenseDisparity, findsTheDisparityOfEachPixel) {
    const Picture picture = drawnTexture(200, 80);
    const LumaPlane left = reducedLuma(media::cropped(picture, 10, 0, 180, 80), {0, 0, 180, 80}, 180, 80);
    const LumaPlane right = reducedLuma(media::cropped(picture, 4, 0, 180, 80), {0, 0, 180, 80}, 180, 80);
    const media::EyePair<DenseDisparity> dense = denseDisparity({left, right}, -8, 12, 0);
    for (int x = 20; x < 150; x += 10) {
        EXPECT_EQ(dense.left.disparities[dense.left.index(x, 40)], 6) << x;
        EXPECT_TRUE(dense.left.agrees[dense.left.index(x, 40)]) << x;
        EXPECT_EQ(dense.right.disparities[dense.right.index(x, 40)], 6) << x;
    }
}

TEST(EyeOrder, bothCuesTellTheEyesOfAScene) {
    int found = 0;
    for (unsigned seed = 1; seed <= 6; ++seed) {
        const media::EyePair<Picture> eyes = drawnEyes({.far = 2.0, .near = -2.0, .things = 9, .seed = seed});
        const EyeOrderCues right = cuesOf(eyes);
        EXPECT_GT(right.slope, 0.4) << seed;
        EXPECT_GT(right.occlusion, 0.05) << seed << ", " << right.strips << " strips";
        EXPECT_FALSE(areSwapped(std::array{right})) << seed;
        const EyeOrderCues wrong = exchangedCuesOf(eyes);
        EXPECT_LT(wrong.slope, -0.4) << seed;
        EXPECT_LT(wrong.occlusion, -0.05) << seed << ", " << wrong.strips << " strips";
        found += areSwapped(std::array{wrong}) ? 1 : 0;
    }
    EXPECT_GE(found, 4);
}

TEST(EyeOrder, thingsThatHangFromACeilingAreNotTakenForSwapped) {
    for (unsigned seed = 1; seed <= 6; ++seed) {
        const EyeOrderCues cues =
            cuesOf(drawnEyes({.far = 2.0, .near = -2.0, .things = 9, .isHanging = true, .seed = seed}));
        EXPECT_LT(cues.slope, 0) << seed; // this cue is wrong here
        EXPECT_GT(cues.occlusion, 0) << seed;
        EXPECT_FALSE(areSwapped(std::array{cues})) << seed;
    }
}

TEST(EyeOrder, needsBothCuesInEveryLook) {
    const EyeOrderCues swapped{.slope = -0.8, .occlusion = -0.6, .certainty = 8, .strips = 300};
    const EyeOrderCues right{.slope = 0.8, .occlusion = 0.6, .certainty = 8, .strips = 300};
    const EyeOrderCues slopeOnly{.slope = -0.8};
    EXPECT_TRUE(areSwapped(std::array{swapped}));
    EXPECT_TRUE(areSwapped(std::array{swapped, swapped, swapped}));
    EXPECT_FALSE(areSwapped(std::array{right}));
    EXPECT_FALSE(areSwapped(std::array{slopeOnly}));
    EXPECT_FALSE(areSwapped(std::array{swapped, swapped, right}));
    EXPECT_FALSE(areSwapped({}));
    const EyeOrderCues uncertain{.slope = -0.8, .occlusion = -0.6, .certainty = 1.4, .strips = 50};
    EXPECT_FALSE(areSwapped(std::array{uncertain}));
    EXPECT_TRUE(areSwapped(std::array{uncertain, uncertain, uncertain}));
}

} // namespace
} // namespace lumetwin::test
