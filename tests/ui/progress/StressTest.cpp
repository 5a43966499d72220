// SPDX-License-Identifier: GPL-3.0-or-later
// Batches that report as fast as they can, stopped and closed at random moments.
#include "support/Scripted.h"
#include "ui/form/MainViewController.h"
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/BackgroundThreads.h"
#include "ui/widgets/MainThreadQueue.h"

#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <thread>

namespace lumetwin::test {
namespace {

constexpr std::int64_t files = 1000;

/// Reports what a batch of a thousand files would report, without the files.
void reportManyFiles(VideoProcessor &processor) {
    for (std::int64_t file = 0; file < files && !processor.cancelRequested; ++file) {
        processor.onProgress(file, files, "clip " + std::to_string(file) + ".mov");
        std::thread video;
        if (file % 50 == 0)
            video = std::thread([&processor] {
                for (std::int64_t frame = 8; frame <= 80; frame += 8)
                    processor.onFrameProgress(frame, 80);
            });
        else if (file % 3 == 0)
            processor.onSkip("clip.mov", "not spatial");
        else
            processor.onResult(result("/x/clip.mov", FileState::converted));
        if (video.joinable())
            video.join();
    }
    processor.onComplete(!processor.cancelRequested, "done");
}

class Stress : public testing::Test {
protected:
    Stress() {
        services = fakes.services();
        services.runBatch = [this](VideoProcessor &processor) {
            reportManyFiles(processor);
            ++runsEnded;
        };
    }
    ~Stress() override {
        BackgroundThreads::shared().waitForAll(std::chrono::seconds(60));
        processPendingEvents();
    }
    std::unique_ptr<MainViewController> openForm() {
        auto form = std::make_unique<MainViewController>(services);
        form->settings->inputFolderURL = scratch.path;
        form->settings->outputFolderURL = scratch.path;
        form->show();
        return form;
    }

    FakeServices fakes;
    FormServices services;
    ScratchFolder scratch;
    std::atomic<int> runsEnded{0};
    std::mt19937 random{20260101};
};

TEST_F(Stress, AThousandFilesEndInOneAlert) {
    const auto form = openForm();
    int ends = 0;
    QObject::connect(form.get(), &MainViewController::batchFinished, form.get(), [&ends] { ++ends; });
    control<QPushButton>(*form, "startButton").click();
    ASSERT_TRUE(waitUntil([&] { return ends == 1; }));
    EXPECT_EQ(fakes.alerts->shown.size(), 1U);
    EXPECT_EQ(runsEnded, 1);
}

TEST_F(Stress, StoppedAtRandomMomentsAHundredTimes) {
    const auto form = openForm();
    auto &button = control<QPushButton>(*form, "startButton");
    for (int round = 0; round < 100; ++round) {
        ASSERT_TRUE(waitUntil([&] { return button.isEnabled(); })) << "round " << round;
        button.click();
        ASSERT_TRUE(waitUntil([&] { return form->progressSheet() != nullptr; })) << "round " << round;
        for (unsigned turns = random() % 20; turns > 0; --turns)
            QCoreApplication::processEvents();
        if (ProgressViewController *sheet = form->progressSheet()) {
            fakes.alerts->answers = {0};
            if (sheet->state() == ProgressViewController::State::running)
                sheet->cancelTapped();
            else
                sheet->closeTapped();
        }
        fakes.alerts->answers.clear();
    }
    EXPECT_TRUE(waitUntil([&] { return button.isEnabled(); }));
    EXPECT_EQ(runsEnded, 100);
}

TEST_F(Stress, ClosedAtRandomMomentsAHundredTimes) {
    for (int round = 0; round < 100; ++round) {
        auto form = openForm();
        control<QPushButton>(*form, "startButton").click();
        for (unsigned turns = random() % 30; turns > 0; --turns)
            QCoreApplication::processEvents();
        form.reset();
        processPendingEvents();
    }
    EXPECT_TRUE(BackgroundThreads::shared().waitForAll(std::chrono::seconds(60)));
    processPendingEvents();
}

TEST(MainThreadQueue, KeepsTheOrderOfEachThread) {
    constexpr int threads = 4, tasks = 2000;
    std::vector<std::vector<int>> seen(threads);
    std::vector<std::thread> posters;
    for (int poster = 0; poster < threads; ++poster)
        posters.emplace_back([&seen, poster] {
            for (int task = 0; task < tasks; ++task)
                MainThreadQueue::shared().post([&seen, poster, task] { seen[std::size_t(poster)].push_back(task); });
        });
    for (std::thread &poster : posters)
        poster.join();
    EXPECT_TRUE(waitUntil(
        [&] { return std::all_of(seen.begin(), seen.end(), [](const auto &list) { return list.size() == tasks; }); }));
    for (const auto &list : seen)
        EXPECT_TRUE(std::is_sorted(list.begin(), list.end()));
}

TEST(MainThreadQueue, InterfaceRespondsWhileManyTasksWait) {
    std::atomic<bool> stop{false};
    std::atomic<int> pending{0};
    std::thread flood([&] {
        while (!stop)
            if (pending < 10000) {
                ++pending;
                MainThreadQueue::shared().post([&pending] {
                    std::this_thread::sleep_for(std::chrono::microseconds(50));
                    --pending;
                });
            }
    });
    ASSERT_TRUE(waitUntil([&] { return pending > 1000; }));
    int timeouts = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&timeouts] { ++timeouts; });
    timer.start(0);
    EXPECT_TRUE(waitUntil([&] { return timeouts >= 10; }));
    stop = true;
    flood.join();
    EXPECT_TRUE(waitUntil([&] { return pending == 0; }));
}

} // namespace
} // namespace lumetwin::test
