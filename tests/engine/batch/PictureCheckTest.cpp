// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/PictureCheck.h"

#include "engine/ConversionInput.h"
#include "tests/engine/batch/BatchRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

namespace lumetwin::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A batch whose files are said to look a certain way.
class PictureCheckTest : public BatchRun {
protected:
    PictureCheckTest() {
        settings->direction = ConversionDirection::sbsToSpatial;
        settings->checkStereo = true;
        findings.wasExamined = true;
        findings.seen = EyeArrangement::sideBySide;
        findings.disparity = DisparityFigures{.nearest = -0.5, .middle = 0.5, .farthest = 1.5, .vertical = 0};
        lookClosely = [this](const ConversionInput &) { return facts; };
        examine = [this](const ConversionInput &, const StereoLayout &layout) {
            layouts.push_back(layout);
            return findings;
        };
    }

    void runOn(const std::string &name) {
        settings->inputFiles = std::vector{file(name)};
        run();
    }

    std::vector<WarningKind> kinds() const {
        std::vector<WarningKind> all;
        for (const Warning &warning : results.at(0).warnings)
            all.push_back(warning.kind);
        return all;
    }

    MediaFacts facts;
    StereoFindings findings;
    std::vector<StereoLayout> layouts; ///< in which pictures were examined
};

TEST_F(PictureCheckTest, addsTheFiguresAndWarningsToTheResult) {
    findings.disparity->farthest = 3;
    nextOutcome.warnings = {{WarningKind::chaptersLeft, {std::int64_t{1}}}};
    runOn("a.jpg");
    EXPECT_EQ(results.at(0).disparity, findings.disparity);
    EXPECT_THAT(kinds(), ElementsAre(WarningKind::tooFarBehind, WarningKind::chaptersLeft));
    EXPECT_EQ(results.at(0).state, FileState::convertedWithWarnings);
}

TEST_F(PictureCheckTest, picturesThatAreFineAddNothing) {
    runOn("a.mp4");
    EXPECT_THAT(kinds(), IsEmpty());
    EXPECT_EQ(results.at(0).state, FileState::converted);
    EXPECT_THAT(layouts, ElementsAre(StereoLayout()));
}

TEST_F(PictureCheckTest, canBeLeftOut) {
    settings->checkStereo = false;
    findings.seen.reset();
    runOn("a.jpg");
    EXPECT_THAT(layouts, IsEmpty());
    EXPECT_THAT(kinds(), IsEmpty());
    EXPECT_FALSE(results.at(0).disparity);
}

TEST_F(PictureCheckTest, isNotMadeInTheOtherDirection) {
    settings->direction = ConversionDirection::spatialToSBS;
    spatialNames = {"a.heic"};
    runOn("a.heic");
    EXPECT_THAT(layouts, IsEmpty());
    EXPECT_EQ(results.at(0).state, FileState::converted);
}

TEST_F(PictureCheckTest, asksInTheLayoutAndOrderOfTheResult) {
    facts.layout = StereoLayout{EyeArrangement::overUnder, true, true, LayoutSource::container};
    runOn("a.jpg");
    settings->swapLeftRight = true;
    results.clear();
    runOn("a.jpg");
    ASSERT_EQ(layouts.size(), 2U);
    EXPECT_EQ(layouts[0].arrangement, EyeArrangement::overUnder);
    EXPECT_TRUE(layouts[0].isHalf);
    EXPECT_TRUE(layouts[0].rightEyeFirst);
    EXPECT_FALSE(layouts[1].rightEyeFirst); // the user's exchange puts the left eye first
}

TEST_F(PictureCheckTest, neverChangesALayoutByItself) {
    findings.seen = EyeArrangement::overUnder;
    findings.disparity.reset();
    runOn("a.jpg");
    EXPECT_THAT(kinds(), ElementsAre(WarningKind::pictureSuggestsLayout));
    EXPECT_EQ(results.at(0).state, FileState::convertedWithWarnings);
}

TEST_F(PictureCheckTest, aFailedCheckIsLoggedOnly) {
    examine = [](const ConversionInput &, const StereoLayout &) -> StereoFindings {
        throw std::runtime_error("no picture");
    };
    runOn("a.jpg");
    EXPECT_EQ(results.at(0).state, FileState::converted);
    EXPECT_THAT(log, ElementsAre(testing::HasSubstr("its picture was not examined: no picture")));
}

TEST_F(PictureCheckTest, choosesTheDisparityAdjustment) {
    settings->automaticDisparity = true;
    settings->checkStereo = false;
    findings.disparity->farthest = -1;
    runOn("a.jpg");
    EXPECT_THAT(kinds(), ElementsAre(WarningKind::disparityChosen));
    EXPECT_EQ(results.at(0).warnings[0].values, std::vector<Warning::Value>{3.0});
    EXPECT_EQ(results.at(0).state, FileState::converted); // a note only
    EXPECT_THAT(adjustments, ElementsAre(std::optional(3.0)));
}

TEST_F(PictureCheckTest, doesNotChooseWithoutFigures) {
    settings->automaticDisparity = true;
    findings.seen.reset();
    findings.disparity.reset();
    runOn("a.jpg");
    EXPECT_THAT(kinds(), ElementsAre(WarningKind::notStereo));
    EXPECT_THAT(adjustments, ElementsAre(std::nullopt));
}

TEST_F(PictureCheckTest, aDryRunWarnsAndWritesNothing) {
    settings->dryRun = true;
    findings.disparity->farthest = 3;
    facts.layout = StereoLayout{EyeArrangement::overUnder, false, false, LayoutSource::container};
    findings.seen = EyeArrangement::overUnder;
    runOn("a.jpg");
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_TRUE(std::filesystem::is_empty(output.path()));
    EXPECT_EQ(results.at(0).state, FileState::wouldBeConverted);
    EXPECT_EQ(results.at(0).disparity, findings.disparity);
    EXPECT_TRUE(results.at(0).output.empty());
    EXPECT_THAT(kinds(), ElementsAre(WarningKind::tooFarBehind, WarningKind::layoutUsed));
    ASSERT_EQ(completions.size(), 1U);
    EXPECT_TRUE(completions[0].success);
}

TEST_F(PictureCheckTest, aDryRunFailsWhereTheConversionWould) {
    settings->dryRun = true;
    facts.layout = StereoLayout{EyeArrangement::secondUnread, false, false, LayoutSource::container};
    runOn("a.mkv");
    EXPECT_EQ(results.at(0).state, FileState::failed);
    EXPECT_FALSE(results.at(0).reason.empty());
}

TEST_F(PictureCheckTest, aDryRunSkipsAsARunDoes) {
    settings->dryRun = true;
    spatialNames = {"a.heic"};
    runOn("a.heic");
    EXPECT_EQ(results.at(0).state, FileState::skipped);
}

TEST_F(PictureCheckTest, aDryRunCreatesNoFolders) {
    settings->dryRun = true;
    settings->recursive = true;
    std::filesystem::create_directory(input / "below");
    file("below/a.jpg");
    settings->inputFolderURL = input.path();
    run();
    EXPECT_EQ(results.at(0).state, FileState::wouldBeConverted);
    EXPECT_TRUE(std::filesystem::is_empty(output.path()));
}

} // namespace
} // namespace lumetwin::test
