// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/StereoWarnings.h"

#include "engine/texts/Texts.h"
#include "engine/texts/WarningTexts.h"
#include "tests/engine/stereo/Layouts.h"

#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

StereoFindings comfortable() {
    StereoFindings findings;
    findings.wasExamined = true;
    findings.seen = EyeArrangement::sideBySide;
    findings.disparity = DisparityFigures{.nearest = -0.9, .middle = 0.3, .farthest = 1.9, .vertical = 0.1};
    return findings;
}

std::vector<WarningKind> kindsOf(const StereoFindings &findings, const StereoLayout &layout = sideBySide,
                                 double adjustment = 0) {
    std::vector<WarningKind> kinds;
    for (const Warning &warning : stereoWarnings(findings, layout, adjustment)) {
        kinds.push_back(warning.kind);
        EXPECT_FALSE(isNote(warning.kind));
        EXPECT_FALSE(warningText(warning).empty());
    }
    return kinds;
}

using Kinds = std::vector<WarningKind>;

TEST(StereoWarnings, comfortablePicturesHaveNone) {
    EXPECT_EQ(kindsOf(comfortable()), Kinds());
    EXPECT_EQ(kindsOf(StereoFindings()), Kinds()); // nothing was examined
}

TEST(StereoWarnings, nameWhatIsNotThere) {
    StereoFindings findings;
    findings.wasExamined = true;
    EXPECT_EQ(kindsOf(findings), Kinds{WarningKind::notStereo});
}

TEST(StereoWarnings, nameTheLayoutThatIsSeen) {
    setTextLocale("en");
    StereoFindings findings = comfortable();
    findings.seen = EyeArrangement::overUnder;
    findings.disparity.reset();
    const std::vector<Warning> warnings = stereoWarnings(findings, sideBySide);
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_EQ(warnings[0], (Warning{WarningKind::pictureSuggestsLayout, {std::string("over-under")}}));
    EXPECT_EQ(kindsOf(findings, {.arrangement = EyeArrangement::overUnder}), Kinds());
}

TEST(StereoWarnings, nameWhatIsWrongWithTheEyes) {
    StereoFindings flat = comfortable();
    flat.looksFlat = true;
    EXPECT_EQ(kindsOf(flat), Kinds{WarningKind::looksFlat});
    StereoFindings turned = comfortable();
    turned.isLevel = false;
    turned.unevenness = 0.8;
    EXPECT_EQ(stereoWarnings(turned, sideBySide), (std::vector<Warning>{{WarningKind::eyesNotLevel, {0.8}}}));
    StereoFindings lower = comfortable();
    lower.isLevel = false;
    lower.disparity->vertical = -1.5;
    EXPECT_EQ(stereoWarnings(lower, sideBySide), (std::vector<Warning>{{WarningKind::eyesNotLevel, {1.5}}}));
}

TEST(StereoWarnings, ofSwappedEyesTheFiguresSayNothing) {
    StereoFindings swapped = comfortable();
    swapped.probablySwapped = true;
    swapped.disparity->farthest = 5;
    EXPECT_EQ(kindsOf(swapped), Kinds{WarningKind::eyesProbablySwapped});
}

TEST(StereoWarnings, nameTheLimitsOfComfort) {
    StereoFindings findings = comfortable();
    findings.disparity->farthest = 3.5;
    findings.disparity->nearest = -1.5;
    EXPECT_EQ(stereoWarnings(findings, sideBySide),
              (std::vector<Warning>{{WarningKind::tooFarBehind, {3.5}}, {WarningKind::tooNear, {1.5}}}));
    findings.disparity->farthest = 2.04; // shown as 2.0
    findings.disparity->nearest = -1.04;
    EXPECT_EQ(kindsOf(findings), Kinds());
}

TEST(StereoWarnings, anAdjustmentMovesTheFigures) {
    StereoFindings findings = comfortable();
    EXPECT_EQ(kindsOf(findings, sideBySide, 1), Kinds{WarningKind::tooFarBehind});
    EXPECT_EQ(kindsOf(findings, sideBySide, -1), Kinds{WarningKind::tooNear});
}

TEST(StereoWarnings, theChosenAdjustmentMovesTheFarPartsToTheLimit) {
    EXPECT_DOUBLE_EQ(chosenAdjustment({.farthest = -0.956}), 2.96);
    EXPECT_DOUBLE_EQ(chosenAdjustment({.farthest = 3.5}), -1.5);
    EXPECT_DOUBLE_EQ(chosenAdjustment({.farthest = 2}), 0);
    EXPECT_DOUBLE_EQ(chosenAdjustment({.farthest = -200}), 100);
    EXPECT_DOUBLE_EQ(chosenAdjustment({.farthest = 200}), -100);
}

} // namespace
} // namespace lumetwin::test
