// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ProgressLine.h"

#include "engine/texts/Texts.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace lumetwin::batch {
namespace {

class ProgressLine : public testing::Test {
protected:
    ProgressLine() { setTextLocale("en"); }
    ~ProgressLine() override { setTextLocale("en"); }

    BatchProgress progress{
        .index = 1, .total = 5, .fileName = "holiday.mov", .frame = 120, .frames = 480, .seconds = 5};
};

TEST_F(ProgressLine, ShowsFileFramesRateAndTime) {
    EXPECT_EQ(progressLine(progress, 80),
              "[2/5] holiday.mov  [#####------------------]  25%  0:15 left  24.0 fps  120/480");
    EXPECT_EQ(displayWidth(progressLine(progress, 80)), 79);
}

TEST_F(ProgressLine, BarHasAMaximumWidth) {
    EXPECT_EQ(progressLine(progress, 300),
              "[2/5] holiday.mov  [#######---------------------]  25%  0:15 left  24.0 fps  120/480");
}

TEST_F(ProgressLine, LeavesOutWhatDoesNotFit) {
    EXPECT_EQ(progressLine(progress, 59), "[2/5] holiday.mov  25%  0:15 left  24.0 fps  120/480");
    EXPECT_EQ(progressLine(progress, 50), "[2/5] holiday.mov  25%  0:15 left  24.0 fps");
    EXPECT_EQ(progressLine(progress, 30), "[2/5] holiday.mov  25%");
    EXPECT_EQ(progressLine(progress, 18), "[2/5] holiday.mov");
    EXPECT_EQ(progressLine(progress, 14), "[2/5] hol…mov");
    EXPECT_EQ(progressLine(progress, 8), "[2/5]");
    EXPECT_EQ(progressLine(progress, 5), "");
    EXPECT_EQ(progressLine(progress, 0), "");
}

TEST_F(ProgressLine, FitsEveryWidth) {
    for (const char *name : {"holiday.mov", "写真の長い名前の動画.mov", "🎬🎬🎬🎬🎬🎬.heic", "\xff\x1b.mov", ""}) {
        progress.fileName = name;
        for (int columns = 0; columns < 200; ++columns)
            EXPECT_LT(displayWidth(progressLine(progress, columns)), std::max(columns, 1)) << name << columns;
    }
}

TEST_F(ProgressLine, BeforeTheFirstFrameOnlyTheFileIsKnown) {
    progress.frame = progress.frames = 0;
    progress.seconds = 0;
    EXPECT_EQ(progressLine(progress, 80), "[2/5] holiday.mov");
}

TEST_F(ProgressLine, UnknownTotalCountsFrames) {
    progress.frames = 0;
    EXPECT_EQ(progressLine(progress, 80), "[2/5] holiday.mov  24.0 fps  120 frames");
}

TEST_F(ProgressLine, RateIsShownAfterAMoment) {
    progress.seconds = 0.2;
    EXPECT_EQ(progressLine(progress, 60), "[2/5] holiday.mov  [######------------------]  25%  120/480");
}

TEST_F(ProgressLine, MoreFramesThanExpectedStayAtTheEnd) {
    progress.frame = 500;
    EXPECT_EQ(progressLine(progress, 70), "[2/5] holiday.mov  [###########]  100%  0:00 left  100.0 fps  500/480");
}

TEST_F(ProgressLine, UsesTheLanguageOfTheTexts) {
    setTextLocale("ja");
    EXPECT_EQ(progressLine(progress, 59), "[2/5] holiday.mov  25%  残り 0:15  24.0 fps  120/480");
}

TEST(DisplayWidth, CountsColumns) {
    EXPECT_EQ(displayWidth("abc"), 3);
    EXPECT_EQ(displayWidth("写真"), 4);
    EXPECT_EQ(displayWidth("🎬"), 2);
    EXPECT_EQ(displayWidth("e\u0301"), 1);
    EXPECT_EQ(displayWidth("\xff"), 1);
    EXPECT_EQ(displayWidth(""), 0);
}

TEST(ElidedInMiddle, KeepsBothEnds) {
    EXPECT_EQ(elidedInMiddle("holiday.mov", 11), "holiday.mov");
    EXPECT_EQ(elidedInMiddle("holiday.mov", 10), "holid….mov");
    EXPECT_EQ(elidedInMiddle("写真.mov", 6), "写…mov");
    EXPECT_EQ(elidedInMiddle("写真写真", 6), "写…真");
    EXPECT_EQ(elidedInMiddle("ab", 1), "…");
    EXPECT_EQ(elidedInMiddle("ab", 0), "");
}

TEST(ClockTime, HasHoursWhenNeeded) {
    EXPECT_EQ(clockTime(0), "0:00");
    EXPECT_EQ(clockTime(7.9), "0:07");
    EXPECT_EQ(clockTime(754), "12:34");
    EXPECT_EQ(clockTime(3723), "1:02:03");
    EXPECT_EQ(clockTime(-1), "0:00");
}

} // namespace
} // namespace lumetwin::batch
