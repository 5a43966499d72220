// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/Texts.h"
#include "tests/engine/batch/BatchRun.h"

#include <gmock/gmock.h>

#include <thread>

namespace lumetwin::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Cancel : public BatchRun {
protected:
    Cancel() {
        for (const char *name : {"1.mov", "2.mov", "3.mov", "4.mov", "5.mov"})
            spatial(name);
        useFolder();
    }
};

TEST_F(Cancel, NoFurtherFileIsStarted) {
    onConvert("3.mov", [&](const ConversionControl *control) {
        processor->cancelRequested = true;
        EXPECT_TRUE(control->cancelled());
    });
    run();
    EXPECT_EQ(calls.size(), 3u);
    EXPECT_EQ(progress.size(), 3u);
    EXPECT_THAT(completions, ElementsAre(Completion{false, text("status.cancelled")}));
    EXPECT_THAT(converted, ElementsAre("1.mov|1_sbs.mp4", "2.mov|2_sbs.mp4")) << "the third left no output";
}

TEST_F(Cancel, AbandonedConversionDoesNotClaimAnOlderOutput) {
    writeFile(output / "1_sbs.mp4", std::string("older"));
    onConvert("1.mov", [&](const ConversionControl *) { processor->cancelRequested = true; });
    run();
    EXPECT_THAT(converted, IsEmpty());
}

TEST_F(Cancel, FileThatWasFinishedAllTheSameIsReported) {
    onConvert("1.mov", [&](const ConversionControl *) {
        processor->cancelRequested = true;
        finishesAllTheSame = true;
    });
    run();
    EXPECT_THAT(converted, ElementsAre("1.mov|1_sbs.mp4"));
    EXPECT_THAT(completions, ElementsAre(Completion{false, text("status.cancelled")}));
}

TEST_F(Cancel, DuringTheLastFileCounts) {
    settings->inputFolderURL.reset();
    settings->inputFiles = {input / "5.mov"};
    onConvert("5.mov", [&](const ConversionControl *) { processor->cancelRequested = true; });
    run();
    EXPECT_THAT(completions, ElementsAre(Completion{false, text("status.cancelled")}));
}

TEST_F(Cancel, BeforeTheRunNothingIsStarted) {
    VideoProcessor batch(settings, SystemVersion::current(), {});
    batch.cancelRequested = true;
    batch.onProgress = [](auto, auto, const auto &) { FAIL(); };
    batch.onComplete = [&](bool success, const auto &message) { completions.push_back({success, message}); };
    batch.processAll();
    EXPECT_THAT(completions, ElementsAre(Completion{false, text("status.cancelled")}));
}

TEST_F(Cancel, FromAnotherThreadIsSeenBetweenFrames) {
    std::atomic<bool> frameShown = false;
    std::thread user;
    onConvert("2.mov", [&](const ConversionControl *control) {
        user = std::thread([&, batch = processor] {
            while (!frameShown)
                std::this_thread::yield();
            batch->cancelRequested = true;
        });
        // The frame loop of a converter, on a thread of its own.
        std::thread([&] {
            for (std::int64_t frame = 0; !control->cancelled(); ++frame) {
                if (frame == 0)
                    control->onFrameProgress(frame, 0);
                frameShown = true;
            }
        }).join();
    });
    run();
    user.join();
    EXPECT_EQ(calls.size(), 2u);
    EXPECT_EQ(frames.size(), 1u);
    EXPECT_THAT(completions, ElementsAre(Completion{false, text("status.cancelled")}));
}

TEST_F(Cancel, EveryFileHasItsResult) {
    onConvert("2.mov", [&](const ConversionControl *) { processor->cancelRequested = true; });
    run();
    std::vector<FileState> states;
    for (const FileResult &result : results)
        states.push_back(result.state);
    EXPECT_THAT(states, ElementsAre(FileState::converted, FileState::cancelled, FileState::notReached,
                                    FileState::notReached, FileState::notReached));
    EXPECT_EQ(results[1].output, "") << "nothing was written";
    EXPECT_EQ(results[4].input.filename(), "5.mov");
}

TEST(WarningList, TakesFromSeveralThreads) {
    WarningList list;
    const auto warn = [&] {
        for (int count = 0; count < 100; ++count)
            list.add(WarningKind::withoutSound, {std::string("again")});
    };
    std::thread sound(warn);
    warn();
    sound.join();
    EXPECT_EQ(list.take(), std::vector<Warning>(200, Warning{WarningKind::withoutSound, {std::string("again")}}));
}

} // namespace
} // namespace lumetwin::test
