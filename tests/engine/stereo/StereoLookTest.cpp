// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/StereoLook.h"
#include "tests/engine/stereo/Layouts.h"
#include "tests/support/Drawing.h"
#include "tests/support/StereoScenes.h"

#include <gtest/gtest.h>

#include <array>

namespace lumetwin::test {
namespace {

StereoFindings findingsOf(const Picture &frame, const StereoLayout &layout) {
    return findings(std::array{lookAtFrame(frame, layout)});
}

TEST(StereoLook, seesEyesInTheirLayout) {
    const media::EyePair<Picture> eyes = drawnEyes({.far = 1.2});
    for (const auto &[frame, layout] :
         {std::pair(besideEachOther(eyes), sideBySide), std::pair(aboveEachOther(eyes), overUnder)}) {
        const StereoFindings found = findingsOf(frame, layout);
        EXPECT_TRUE(found.wasExamined);
        EXPECT_EQ(found.seen, layout.arrangement);
        ASSERT_TRUE(found.disparity);
        EXPECT_NEAR(found.disparity->farthest, 1.2, 0.06);
        EXPECT_TRUE(found.isLevel);
        EXPECT_FALSE(found.looksFlat);
        EXPECT_FALSE(found.probablySwapped);
    }
}

TEST(StereoLook, seesEyesInTheOtherLayout) {
    const media::EyePair<Picture> eyes = drawnEyes({});
    const StereoFindings beside = findingsOf(besideEachOther(eyes), overUnder);
    EXPECT_EQ(beside.seen, EyeArrangement::sideBySide);
    EXPECT_FALSE(beside.disparity); // of the layout in which the file is read there is none
    EXPECT_EQ(findingsOf(aboveEachOther(eyes), sideBySide).seen, EyeArrangement::overUnder);
}

TEST(StereoLook, seesHalfWidth) {
    const Picture whole = besideEachOther(drawnEyes({.width = 480, .height = 540, .far = 1.5}));
    const StereoFindings found = findingsOf(whole, {.arrangement = EyeArrangement::sideBySide, .isHalf = true});
    EXPECT_EQ(found.seen, EyeArrangement::sideBySide);
    ASSERT_TRUE(found.disparity);
    EXPECT_NEAR(found.disparity->farthest, 1.5, 0.06);
}

TEST(StereoLook, theRightEyeMayComeFirst) {
    media::EyePair<Picture> eyes = drawnEyes({.far = 1.2, .near = -0.5});
    std::swap(eyes.left, eyes.right);
    const Picture frame = besideEachOther(eyes);
    StereoLayout layout = sideBySide;
    layout.rightEyeFirst = true;
    EXPECT_NEAR(findingsOf(frame, layout).disparity.value().farthest, 1.2, 0.06);
    EXPECT_NEAR(findingsOf(frame, sideBySide).disparity.value().nearest, -1.2, 0.06);
}

TEST(StereoLook, oneEyeIsNoPair) {
    for (const StereoLayout &layout : {sideBySide, overUnder}) {
        const StereoFindings found = findingsOf(drawnEyes({.width = 1280, .height = 720}).left, layout);
        EXPECT_TRUE(found.wasExamined);
        EXPECT_FALSE(found.seen);
        EXPECT_FALSE(found.disparity);
    }
}

TEST(StereoLook, evenPicturesAreNotExamined) {
    EXPECT_EQ(findingsOf(flat(1280, 360, grey8, 80), sideBySide), StereoFindings());
    EXPECT_EQ(findingsOf(flat(3, 3, grey8, 80), sideBySide), StereoFindings());
    EXPECT_EQ(findings({}), StereoFindings());
    EXPECT_EQ(findingsOf(besideEachOther(drawnEyes({})), {.arrangement = EyeArrangement::interleaved}),
              StereoFindings());
}

TEST(StereoLook, saysWhatIsWrong) {
    EXPECT_FALSE(findingsOf(besideEachOther(drawnEyes({.lower = 0.7})), sideBySide).isLevel);
    EXPECT_TRUE(findingsOf(besideEachOther(drawnEyes({.near = 1, .things = 0})), sideBySide).looksFlat);
    const media::EyePair<Picture> eyes = drawnEyes({.far = 2, .near = -2.5, .things = 9, .seed = 3});
    EXPECT_TRUE(findingsOf(besideEachOther({eyes.right, eyes.left}), sideBySide).probablySwapped);
    EXPECT_FALSE(findingsOf(besideEachOther(eyes), sideBySide).probablySwapped);
}

TEST(StereoLook, takesTheMedianOfAFilm) {
    std::vector<StereoLook> looks;
    for (const double far : {0.5, 1.0, 4.0})
        looks.push_back(lookAtFrame(besideEachOther(drawnEyes({.far = far})), sideBySide));
    looks.push_back(lookAtFrame(flat(1280, 360, grey8, 16), sideBySide)); // a black frame says nothing
    const StereoFindings found = findings(looks);
    EXPECT_EQ(found.seen, EyeArrangement::sideBySide);
    EXPECT_NEAR(found.disparity.value().farthest, 1.0, 0.06);
}

TEST(StereoLook, mostFramesOfAFilmDecide) {
    const StereoLook stereo = lookAtFrame(besideEachOther(drawnEyes({})), sideBySide);
    const StereoLook titles = lookAtFrame(drawnTexture(1280, 360), sideBySide);
    EXPECT_TRUE(findings(std::array{stereo, stereo, titles}).seen);
    EXPECT_FALSE(findings(std::array{stereo, titles, titles}).seen);
}

TEST(StereoLook, comparesTwoPictures) {
    const media::EyePair<Picture> eyes = drawnEyes({.far = 1.2});
    const StereoFindings found =
        findings(std::array{lookAtEyes({eyePlane(eyes.left), eyePlane(eyes.right)}, EyeArrangement::twoPictures)});
    EXPECT_EQ(found.seen, EyeArrangement::twoPictures);
    EXPECT_NEAR(found.disparity.value().farthest, 1.2, 0.06);
}

} // namespace
} // namespace lumetwin::test
