// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/Texts.h"
#include "support/SheetFixture.h"
#include "ui/widgets/MainThreadQueue.h"
#include "ui/widgets/Palettes.h"

#include <QAccessible>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace lumetwin::test {
namespace {

using std::chrono::seconds;

TEST_F(ProgressSheet, BeginsWithItsInitialTexts) {
    start();
    EXPECT_EQ(sheet->size(), QSize(560, 340));
    EXPECT_EQ(label("titleLabel"), text("progress.title"));
    EXPECT_EQ(label("statusLabel"), text("progress.starting"));
    EXPECT_EQ(label("fileNameLabel"), text("progress.preparing"));
    EXPECT_EQ(label("fileProgressLabel"), text("progress.frame.initial"));
    EXPECT_EQ(label("overallLabel"), text("progress.files.initial"));
    EXPECT_EQ(label("fileCountLabel"), "0 / 0");
    EXPECT_EQ(label("elapsedLabel"), text("progress.elapsed.initial"));
    EXPECT_EQ(button().text(), QString::fromUtf8("⏹  ") + QString::fromStdString(text("button.cancel")));
    EXPECT_EQ(button().colour().rgba(), colour(0.7, 0.15, 0.15).rgba());
    EXPECT_TRUE(bar("fileProgressBar").isIndeterminate());
    EXPECT_FALSE(bar("overallProgress").isIndeterminate());
    EXPECT_TRUE(timerRuns());
    EXPECT_EQ(sheet->state(), ProgressViewController::State::running);
}

TEST_F(ProgressSheet, WidgetsAreAtTheirPositions) {
    start();
    EXPECT_EQ(button().geometry(), QRect(200, 278, 160, 38));
    EXPECT_EQ(control<QLabel>(*sheet, "titleLabel").geometry(), QRect(40, 36, 480, 26));
    EXPECT_EQ(bar("fileProgressBar").geometry(), QRect(40, 152, 480, 12));
    EXPECT_EQ(bar("overallProgress").geometry(), QRect(40, 198, 480, 14));
    EXPECT_EQ(sheet->grab().toImage().pixelColor(280, 20).rgba(), colour(0.08, 0.09, 0.12).rgba());
}

TEST_F(ProgressSheet, ShowsFilesAsTheyArePassed) {
    start();
    sheet->updateFrameProgress(5, 10);
    sheet->updateProgress(0, 3, "clip.mp4");
    EXPECT_EQ(bar("overallProgress").doubleValue(), 0);
    EXPECT_EQ(label("overallLabel"),
              formatted("progress.files.format", std::int64_t(0), std::int64_t(3), std::int64_t(0)));
    EXPECT_EQ(label("fileCountLabel"), "0 / 3");
    EXPECT_EQ(label("fileNameLabel"), "clip.mp4");
    EXPECT_EQ(label("statusLabel"), text("progress.converting"));
    EXPECT_EQ(label("fileProgressLabel"), text("progress.frame.calculating"));
    EXPECT_TRUE(bar("fileProgressBar").isIndeterminate()) << "until the first frame is reported";
    sheet->updateProgress(2, 3, "photo.jpg");
    EXPECT_EQ(bar("overallProgress").doubleValue(), 2.0 / 3);
    EXPECT_EQ(label("overallLabel"),
              formatted("progress.files.format", std::int64_t(2), std::int64_t(3), std::int64_t(66)));
}

TEST_F(ProgressSheet, NoFilesAreZeroPercent) {
    start();
    sheet->updateProgress(0, 0, "");
    EXPECT_EQ(bar("overallProgress").doubleValue(), 0);
    EXPECT_EQ(label("overallLabel"),
              formatted("progress.files.format", std::int64_t(0), std::int64_t(0), std::int64_t(0)));
}

TEST_F(ProgressSheet, AnUnknownNumberOfFramesShowsTheCount) {
    start();
    sheet->updateProgress(0, 1, "a.mov");
    sheet->updateFrameProgress(16, 0);
    EXPECT_EQ(label("fileProgressLabel"), formatted("progress.frame.processed.format", std::int64_t(16)));
    EXPECT_TRUE(bar("fileProgressBar").isIndeterminate());
    sheet->updateFrameProgress(24, 96);
    EXPECT_FALSE(bar("fileProgressBar").isIndeterminate());
    EXPECT_EQ(bar("fileProgressBar").doubleValue(), 0.25);
    EXPECT_EQ(label("fileProgressLabel"),
              formatted("progress.frame.format", std::int64_t(24), std::int64_t(96), std::int64_t(25)));
    sheet->updateFrameProgress(32, 0);
    EXPECT_TRUE(bar("fileProgressBar").isIndeterminate());
}

TEST_F(ProgressSheet, MoreFramesThanAnnouncedAreNotHidden) {
    start();
    sheet->updateFrameProgress(120, 100);
    EXPECT_EQ(bar("fileProgressBar").doubleValue(), 1.2);
    EXPECT_EQ(label("fileProgressLabel"),
              formatted("progress.frame.format", std::int64_t(120), std::int64_t(100), std::int64_t(120)));
    EXPECT_EQ(bar("fileProgressBar").value(), bar("fileProgressBar").maximum());
}

TEST_F(ProgressSheet, SkippedFilesShowTheirReason) {
    start();
    sheet->updateProgress(1, 4, "a.mov");
    sheet->showSkipped("a.mov", "not spatial");
    EXPECT_EQ(label("fileNameLabel"), "a.mov");
    EXPECT_EQ(label("fileProgressLabel"), "not spatial");
    EXPECT_FALSE(bar("fileProgressBar").isIndeterminate());
    EXPECT_EQ(bar("fileProgressBar").doubleValue(), 0);
    EXPECT_EQ(bar("overallProgress").doubleValue(), 0.25);
    EXPECT_EQ(label("fileCountLabel"), "1 / 4");
}

TEST_F(ProgressSheet, MinutesAreNotWrappedIntoHours) {
    start();
    *sheet->startTime -= seconds(3725);
    sheet->updateElapsedTime();
    EXPECT_EQ(label("elapsedLabel"), formatted("progress.elapsed.format", std::int64_t(62), std::int64_t(5)));
    EXPECT_NE(label("elapsedLabel").find("62:05"), std::string::npos);
}

TEST_F(ProgressSheet, BarTextAndTitleShowTheSameShare) {
    start();
    double told = 0;
    QObject::connect(sheet, &ProgressViewController::batchProgressed, sheet, [&](double share) { told = share; });
    sheet->updateProgress(1, 4, "b.mov");
    sheet->updateFrameProgress(50, 100);
    EXPECT_EQ(told, 0.375);
    EXPECT_EQ(bar("overallProgress").doubleValue(), told);
    EXPECT_EQ(label("overallLabel"),
              formatted("progress.files.format", std::int64_t(1), std::int64_t(4), std::int64_t(37)));
}

TEST_F(ProgressSheet, LongFilesCountMoreThanShortOnes) {
    start();
    sheet->setFrames({300, 100, 1});
    sheet->updateProgress(0, 3, "long.mov");
    sheet->updateFrameProgress(150, 300);
    EXPECT_EQ(bar("overallProgress").doubleValue(), 150.0 / 401);
    sheet->updateProgress(1, 3, "short.mov");
    EXPECT_EQ(bar("overallProgress").doubleValue(), 300.0 / 401);
    EXPECT_EQ(label("overallLabel"),
              formatted("progress.files.format", std::int64_t(1), std::int64_t(3), std::int64_t(74)));
}

TEST_F(ProgressSheet, ShowsTheTimeLeft) {
    start();
    sheet->updateProgress(1, 4, "b.mov");
    *sheet->startTime -= seconds(60);
    sheet->updateElapsedTime();
    EXPECT_EQ(label("elapsedLabel"), elapsedText(seconds(60), seconds(180)));
    sheet->conversionFinished(true, "done");
    EXPECT_EQ(label("elapsedLabel"), elapsedText(seconds(60))) << "and at the end there is none left";
}

TEST_F(ProgressSheet, APhotoHasItsOwnActivityText) {
    start();
    sheet->updateProgress(0, 1, "a.heic");
    EXPECT_EQ(label("fileProgressLabel"), text("progress.photo"));
}

TEST_F(ProgressSheet, ItsTextsAreReadable) {
    start();
    for (const QLabel *shown : sheet->findChildren<QLabel *>())
        EXPECT_GE(contrast(shown->palette().color(QPalette::WindowText), colour(0.08, 0.09, 0.12)), 4.5)
            << shown->objectName().toStdString();
}

TEST_F(ProgressSheet, EnterPressesItsButton) {
    start();
    QTest::keyClick(&button(), Qt::Key_Return);
    ASSERT_EQ(alerts.shown.size(), 1U);
    EXPECT_EQ(alerts.shown.front().message, text("alert.cancel.title"));
    EXPECT_EQ(alerts.shown.front().defaultButton, 1) << "a second Enter goes on";
}

TEST_F(ProgressSheet, StopDismissesAtOnceAndTheLateEndIsSilent) {
    start([](VideoProcessor &processor) {
        EXPECT_TRUE(processor.cancelRequested);
        processor.onComplete(false, "stopped");
    });
    button().click();
    ASSERT_EQ(alerts.shown.size(), 1U);
    EXPECT_EQ(alerts.shown.front().message, text("alert.cancel.title"));
    EXPECT_EQ(alerts.shown.front().informative, text("alert.cancel.message"));
    EXPECT_EQ(alerts.shown.front().buttons, (std::vector{text("button.stop"), text("button.continue")}));
    EXPECT_EQ(alerts.shown.front().style, AlertStyle::warning);
    EXPECT_FALSE(sheet->runningProcessor()->cancelRequested);
    alerts.answer(0);
    EXPECT_TRUE(sheet->isCancelled());
    EXPECT_TRUE(sheet->runningProcessor()->cancelRequested);
    EXPECT_FALSE(timerRuns());
    EXPECT_EQ(dismissals, 1);
    gate->open();
    EXPECT_TRUE(waitUntil([this] { return *ended; }));
    EXPECT_EQ(alerts.shown.size(), 1U);
}

TEST_F(ProgressSheet, ContinueChangesNothing) {
    for (const int answer : {1, AlertPresenter::dismissed}) {
        start();
        QTest::keyClick(&button(), Qt::Key_Escape);
        alerts.answer(answer);
        EXPECT_EQ(sheet->state(), ProgressViewController::State::running);
        EXPECT_FALSE(sheet->runningProcessor()->cancelRequested);
        EXPECT_TRUE(timerRuns());
        EXPECT_EQ(dismissals, 0);
        button().click();
        EXPECT_EQ(alerts.shown.size(), 2U) << "it can be asked again";
        alerts.shown.clear();
        delete sheet;
    }
}

TEST_F(ProgressSheet, AskingTwiceShowsOneQuestion) {
    start();
    sheet->cancelTapped();
    sheet->cancelTapped();
    EXPECT_EQ(alerts.shown.size(), 1U);
}

TEST_F(ProgressSheet, MayBeDestroyedWhileTheBatchRuns) {
    std::atomic<int> calls{0};
    start([&calls](VideoProcessor &processor) {
        for (std::int64_t file = 0; file < 100; ++file) {
            processor.onProgress(file, 100, "a.mov");
            processor.onFrameProgress(1, 2);
            processor.onSkip("a.mov", "reason");
            ++calls;
        }
        processor.onComplete(true, "done");
    });
    const std::weak_ptr<VideoProcessor> processor = sheet->runningProcessor();
    delete sheet;
    EXPECT_FALSE(processor.expired()) << "the running thread keeps it";
    gate->open();
    EXPECT_TRUE(waitUntil([this] { return *ended; }));
    EXPECT_EQ(calls, 100);
    EXPECT_TRUE(alerts.shown.empty());
    EXPECT_TRUE(waitUntil([&processor] { return processor.expired(); }));
}

TEST_F(ProgressSheet, CallbacksOfAllThreadsArriveInOrder) {
    start([](VideoProcessor &processor) {
        for (std::int64_t file = 0; file < 50; ++file) {
            processor.onProgress(file, 50, "file " + std::to_string(file));
            std::thread([&processor] {
                for (std::int64_t frame = 1; frame <= 20; ++frame)
                    processor.onFrameProgress(frame, 20);
            }).join();
        }
        processor.onComplete(true, "done");
    });
    std::vector<double> fractions;
    QObject::connect(sheet, &ProgressViewController::batchProgressed, sheet,
                     [&fractions](double fraction) { fractions.push_back(fraction); });
    gate->open();
    ASSERT_TRUE(waitUntil([this] { return sheet->state() == ProgressViewController::State::finished; }));
    EXPECT_EQ(fractions.size(), 50U * 21);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
}

TEST_F(ProgressSheet, HidingTheSheetStopsTheClock) {
    start();
    sheet->hide();
    EXPECT_FALSE(timerRuns());
}

TEST_F(ProgressSheet, IsADialogWithNamedProgressBars) {
    start();
    EXPECT_EQ(QAccessible::queryAccessibleInterface(sheet)->role(), QAccessible::Dialog);
    for (const char *name : {"fileProgressBar", "overallProgress"}) {
        auto *interface = QAccessible::queryAccessibleInterface(&bar(name));
        EXPECT_EQ(interface->role(), QAccessible::ProgressBar);
        EXPECT_FALSE(interface->text(QAccessible::Name).isEmpty());
    }
    sheet->updateProgress(1, 2, "a.mov");
    auto *value = QAccessible::queryAccessibleInterface(&bar("overallProgress"))->valueInterface();
    ASSERT_TRUE(value);
    EXPECT_EQ(value->currentValue().toInt() * 2, value->maximumValue().toInt());
}

} // namespace
} // namespace lumetwin::test
