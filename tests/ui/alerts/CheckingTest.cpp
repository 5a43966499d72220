// SPDX-License-Identifier: GPL-3.0-or-later
// The check of many videos before a run. It runs on a background thread and can be cancelled.
#include "engine/texts/Texts.h"
#include "support/PreflightFixture.h"
#include "tests/support/Paths.h"
#include "ui/alerts/CheckingDialog.h"

#include <QProgressBar>
#include <QTest>

#include <atomic>
#include <thread>

namespace lumetwin::test {
namespace {

namespace fs = std::filesystem;

TEST_F(Preflight, AThousandCandidatesDoNotFreezeTheWindow) {
    for (int i = 0; i < 1000; ++i)
        std::ofstream(input / ("clip" + std::to_string(i) + ".mp4")) << "x";
    std::atomic<int> tested{0};
    std::atomic<bool> hold{true};
    services.isSpatialVideo = [&](const VideoProcessor &, const fs::path &) {
        while (hold && tested == 500)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        ++tested;
        return true;
    };
    open();
    control<QPushButton>(*form, "startButton").click();
    CheckingDialog *waiting = nullptr;
    ASSERT_TRUE(waitUntil([&] {
        return (waiting = form->findChild<CheckingDialog *>()) && waiting->checkedCount() == 500;
    })) << "the interface goes on working while the candidates are tested";
    EXPECT_TRUE(waiting->isModal());
    EXPECT_EQ(waiting->findChild<QProgressBar *>()->accessibleName().toStdString(), text("spoken.check.progress"));
    EXPECT_EQ(waiting->labelText().toStdString(),
              formatted("check.videos.format", std::int64_t(500), std::int64_t(1000)));
    hold = false;
    EXPECT_TRUE(waitUntil([&] { return form->progressSheet() != nullptr; }));
    EXPECT_EQ(tested, 1000) << "all of them, not a sample";
    processPendingEvents();
    EXPECT_FALSE(form->findChild<CheckingDialog *>());
}

/// The dialog shown during the check of the input, and the ways to close it.
class Checking : public Preflight {
protected:
    Checking() {
        addInputs({"a.mp4", "b.mp4", "c.mp4"});
        services.isSpatialVideo = [this](const VideoProcessor &, const fs::path &) {
            while (hold)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            ++tested;
            return false;
        };
        open();
    }
    ~Checking() override { hold = false; }

    CheckingDialog *startAndWait() {
        hold = true;
        control<QPushButton>(*form, "startButton").click();
        CheckingDialog *waiting = nullptr;
        EXPECT_TRUE(waitUntil([&] { return (waiting = form->findChild<CheckingDialog *>()) != nullptr; }));
        return waiting;
    }
    void expectCancelled() {
        hold = false;
        processPendingEvents();
        EXPECT_TRUE(BackgroundThreads::shared().waitForAll(testTimeout));
        processPendingEvents();
        EXPECT_FALSE(form->findChild<CheckingDialog *>());
        EXPECT_TRUE(fakes.alerts->shown.empty());
        EXPECT_FALSE(form->progressSheet());
    }

    std::atomic<bool> hold{true};
    std::atomic<int> tested{0};
};

TEST_F(Checking, CanBeCancelled) {
    startAndWait()->findChild<QPushButton *>()->click();
    expectCancelled();
    EXPECT_EQ(tested, 1);
    start();
    EXPECT_EQ(alert().message, text("alert.direction.spatial2sbs.title")) << "start works again";
}

TEST_F(Checking, ClosingItsWindowUsesNoFreedMemory) {
    for (int round = 0; round < 5; ++round) {
        const QPointer<CheckingDialog> waiting = startAndWait();
        ASSERT_TRUE(waiting);
        // Closes it as a window manager does: its owner drops it while its close function still runs.
        EXPECT_TRUE(waiting->close());
        expectCancelled();
        EXPECT_FALSE(waiting);
    }
}

TEST_F(Checking, EscapeCancelsIt) {
    QTest::keyClick(startAndWait(), Qt::Key_Escape);
    expectCancelled();
}

TEST_F(Checking, ClosingTheFormMeanwhileIsHarmless) {
    startAndWait();
    form.reset();
    hold = false;
    EXPECT_TRUE(BackgroundThreads::shared().waitForAll(testTimeout));
    processPendingEvents();
    EXPECT_TRUE(fakes.alerts->shown.empty());
}

} // namespace
} // namespace lumetwin::test
