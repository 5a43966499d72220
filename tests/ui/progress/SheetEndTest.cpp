// SPDX-License-Identifier: GPL-3.0-or-later
// How the progress sheet shows the end of a batch.
#include "engine/texts/Texts.h"
#include "support/SheetFixture.h"
#include "ui/widgets/Palettes.h"

#include <QAccessible>

namespace lumetwin::test {
namespace {

using SheetEnd = ProgressSheet;

TEST_F(SheetEnd, FinishesWithAnAlertAndACloseButton) {
    start();
    sheet->conversionFinished(true, "Converted: 2, failed: 0");
    EXPECT_FALSE(timerRuns());
    EXPECT_EQ(bar("fileProgressBar").doubleValue(), 1);
    EXPECT_EQ(bar("overallProgress").doubleValue(), 1);
    EXPECT_EQ(label("overallLabel"), text("status.done"));
    EXPECT_EQ(label("fileProgressLabel"), text("status.done"));
    EXPECT_EQ(label("statusLabel"), "Converted: 2, failed: 0");
    EXPECT_EQ(button().text(), QString::fromUtf8("✓  ") + QString::fromStdString(text("button.close")));
    EXPECT_EQ(button().colour().rgba(), colour(0.15, 0.5, 0.25).rgba());
    ASSERT_EQ(alerts.shown.size(), 1U);
    EXPECT_EQ(alerts.shown.front().message, text("alert.conversion.success"));
    EXPECT_EQ(alerts.shown.front().informative, "Converted: 2, failed: 0");
    EXPECT_EQ(alerts.shown.front().style, AlertStyle::informational);
    EXPECT_TRUE(alerts.shown.front().buttons.empty());
    alerts.answer(0);
    EXPECT_EQ(dismissals, 0) << "the sheet stays until it is closed";
    button().click();
    EXPECT_EQ(dismissals, 1) << "and closing it asks nothing";
    EXPECT_EQ(alerts.shown.size(), 1U);
}

TEST_F(SheetEnd, ShowsTheResultAtTheEnd) {
    start();
    sheet->updateProgress(2, 3, "c.mov");
    sheet->conversionFinished(true, "Converted: 3, failed: 0");
    EXPECT_EQ(label("titleLabel"), text("progress.title.done"));
    EXPECT_EQ(label("fileCountLabel"), "3 / 3");
    EXPECT_EQ(QAccessible::queryAccessibleInterface(sheet)->text(QAccessible::Name).toStdString(),
              text("progress.title.done"));
}

TEST_F(SheetEnd, EverythingSkippedIsNotASuccess) {
    start();
    for (std::int64_t file = 0; file < 2; ++file) {
        sheet->updateProgress(file, 2, "a.mov");
        sheet->showSkipped("a.mov", text("status.skipped.not.spatial"));
    }
    sheet->conversionFinished(true, "Converted: 0, failed: 0");
    ASSERT_EQ(alerts.shown.size(), 1U);
    EXPECT_EQ(alerts.shown.front().style, AlertStyle::warning);
    EXPECT_EQ(alerts.shown.front().message, text("alert.nothing.title"));
    EXPECT_EQ(label("titleLabel"), text("alert.nothing.title"));
}

TEST_F(SheetEnd, FailureIsShownAsAWarning) {
    start();
    sheet->conversionFinished(false, "Converted: 1, failed: 1");
    ASSERT_EQ(alerts.shown.size(), 1U);
    EXPECT_EQ(alerts.shown.front().message, text("alert.conversion.error"));
    EXPECT_EQ(alerts.shown.front().style, AlertStyle::warning);
}

TEST_F(SheetEnd, TheResultAlertOpensTheOutputsAndNamesErrors) {
    std::vector<std::filesystem::path> revealed;
    services.showInFolder = [&revealed](const auto &folder, const auto &outputs) {
        EXPECT_EQ(folder, "/x/out");
        revealed = outputs;
    };
    start([](VideoProcessor &processor) {
        FileResult converted = result("/x/a.mov", FileState::convertedWithWarnings);
        converted.output = "/x/out/a_sbs.mp4";
        converted.warnings = {{WarningKind::withoutSound, {std::string("it is encrypted")}},
                              {WarningKind::chaptersLeft, {std::int64_t{2}}}};
        processor.onResult(converted);
        processor.onSkip("b.mov", "not spatial");
        processor.onResult(result("/x/b.mov", FileState::skipped));
        FileResult failed = result("/x/c.mov", FileState::failed);
        failed.reason = "the file ends too early";
        processor.onResult(failed);
        processor.onComplete(false, "Converted: 1, failed: 1");
    });
    gate->open();
    ASSERT_TRUE(waitUntil([this] { return !alerts.shown.empty(); }));
    EXPECT_EQ(alerts.shown.front().details, "a.mov: The video is written without sound (it is encrypted).\n"
                                            "a.mov: Chapters left out: 2\n"
                                            "b.mov: not spatial\nc.mov: the file ends too early\n");
    EXPECT_EQ(alerts.shown.front().informative, "Converted: 1, failed: 1\nWith warnings: 1, skipped: 1");
    EXPECT_EQ(alerts.shown.front().sideButton, text("button.show.in.folder"));
    alerts.answer(AlertPresenter::sideButton);
    EXPECT_EQ(revealed, std::vector<std::filesystem::path>{"/x/out/a_sbs.mp4"});
}

TEST_F(SheetEnd, AnOpenQuestionIsClosedWhenTheBatchEnds) {
    start();
    sheet->cancelTapped();
    const QPointer<QWidget> question = alerts.anchor;
    sheet->conversionFinished(true, "done");
    processPendingEvents();
    EXPECT_FALSE(question);
    EXPECT_EQ(alerts.shown.size(), 2U);
    EXPECT_EQ(sheet->state(), ProgressViewController::State::finished);
}

} // namespace
} // namespace lumetwin::test
