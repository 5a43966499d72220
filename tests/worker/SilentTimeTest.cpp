// SPDX-License-Identifier: GPL-3.0-or-later
// For how long a worker was silent, without the time in which other programs had the processor.
#include "worker/parent/SilentTime.h"

#include "tests/worker/Handed.h"
#include "tests/worker/OneProcessor.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace lumetwin::test {
namespace {

using namespace std::chrono_literals;
using worker::SilentTime;

TEST(SilentTime, CountsWhereTheProcessWaitsForSomething) {
    EXPECT_EQ(worker::countedSilence({.length = 500ms, .processorTime = 0ms, .isReady = false}), 500ms);
    EXPECT_EQ(worker::countedSilence({.length = 500ms, .processorTime = 100ms, .isReady = false}), 500ms);
}

TEST(SilentTime, CountsWhatAReadyProcessGotOfTheProcessor) {
    EXPECT_EQ(worker::countedSilence({.length = 500ms, .processorTime = 20ms, .isReady = true}), 20ms);
    EXPECT_EQ(worker::countedSilence({.length = 500ms, .processorTime = 500ms, .isReady = true}), 500ms);
    EXPECT_EQ(worker::countedSilence({.length = 500ms, .processorTime = 900ms, .isReady = true}), 500ms)
        << "two threads";
}

TEST(SilentTime, OfAProcessThatWaitsIsAll) {
    worker::WorkerProcess original(TEST_WORKER);
    worker::WorkerProcess waits(original);
    ASSERT_TRUE(waits.next(60s).has_value()) << "it is ready";
    SilentTime silence(waits.number());
    // When it has sent that, it may still run for a moment.
    std::chrono::milliseconds counted{0};
    for (int attempt = 0; attempt < 20 && counted < 500ms; ++attempt) {
        std::this_thread::sleep_for(50ms);
        silence.reset();
        EXPECT_EQ(silence.add(400ms), 0ms) << "a period is not over";
        counted = silence.add(100ms);
    }
    EXPECT_EQ(counted, 500ms);
    EXPECT_GT(silence.add(700ms), 500ms);
    silence.reset();
    EXPECT_EQ(silence.add(100ms), 0ms);
}

TEST(SilentTime, OfAProcessThatHasEndedIsAll) {
    SilentTime silence(-1);
    EXPECT_EQ(silence.add(600ms), 600ms);
}

TEST(SilentTime, OfThisBusyProcessIsWhatItRan) {
    SilentTime silence(getpid());
    EXPECT_EQ(silence.add(100ms), 0ms);
    EXPECT_LT(silence.add(1h), 10min) << "it has run for a moment only";
}

/// Keeps the first processor busy.
class BusyProcessor {
public:
    BusyProcessor()
        : thread_([this] {
              useOneProcessor();
              while (!isOver_) {
              }
          }) {}
    ~BusyProcessor() {
        isOver_ = true;
        thread_.join();
    }

private:
    std::atomic<bool> isOver_ = false;
    std::thread thread_;
};

TEST(Worker, ThatGetsLittleOfTheProcessorIsNotTakenForHanging) {
    constexpr auto limit = 900ms;
    const BusyProcessor other;
    const auto began = std::chrono::steady_clock::now();
    EXPECT_EQ(Handed("works beside others", TEST_WORKER, {.answer = limit}).failure(), "");
    if (std::chrono::steady_clock::now() - began <= limit)
        GTEST_SKIP() << "this system gave it as much of the processor as the other";
}

} // namespace
} // namespace lumetwin::test
