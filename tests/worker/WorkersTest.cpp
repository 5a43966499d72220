// SPDX-License-Identifier: GPL-3.0-or-later
// A failure of a worker becomes an error of its file only.
#include "engine/photo/SpatialPhotoError.h"
#include "engine/texts/MediaErrorTexts.h"
#include "engine/texts/ProcessorError.h"
#include "media/MediaError.h"
#include "tests/worker/Handed.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace lumetwin::test {
namespace {

using namespace std::chrono_literals;

/// "The process that worked on NAME failed: …".
std::string told(const std::string &name, const std::string &what) {
    return "The process that worked on " + name + ".mov failed: " + what;
}

std::string failureOf(const std::string &behaviour, worker::Timeouts timeouts = {}) {
    return Handed(behaviour, TEST_WORKER, timeouts).failure();
}

TEST(Worker, HandsTheOutcomeOver) {
    Handed handed("converts");
    std::vector<std::pair<std::int64_t, std::int64_t>> progress;
    handed.control.onFrameProgress = [&](std::int64_t frame, std::int64_t of) { progress.emplace_back(frame, of); };
    const Outcome outcome = handed.convert();
    EXPECT_TRUE(outcome.written);
    EXPECT_EQ(outcome.framesWritten, 3);
    EXPECT_EQ(outcome.framesExpected, 3);
    EXPECT_EQ(outcome.warnings, (std::vector<Warning>{{WarningKind::soundAway, {0.5}}}));
    ASSERT_FALSE(progress.empty());
    EXPECT_EQ(progress.back(), std::pair(std::int64_t{3}, std::int64_t{3}));
}

TEST(Worker, ConvertsOneFileAfterAnother) {
    Handed handed("converts");
    for (int file = 0; file < 5; ++file)
        EXPECT_TRUE(handed.convert().written);
}

TEST(Worker, ThatCrashesIsToldWithItsSignal) {
    EXPECT_EQ(failureOf("falls over"), told("falls over", "stopped by signal 11 (Segmentation fault)"));
    EXPECT_EQ(failureOf("aborts"), told("aborts", "stopped by signal 6 (Aborted)"));
    EXPECT_EQ(failureOf("is killed"), told("is killed", "stopped by signal 9 (Killed)"));
    EXPECT_EQ(failureOf("ends by itself"), told("ends by itself", "it ended early, with status 3"));
}

TEST(Worker, CrashIsTriedOnceMoreWithOneDecodingThread) {
    Handed handed("falls over with several threads");
    std::vector<std::string> log;
    handed.control.onLog = [&](const std::string &line) { log.push_back(line); };
    const Outcome outcome = handed.convert();
    EXPECT_TRUE(outcome.written);
    EXPECT_EQ(handed.written(), "input") << "the half file of the first attempt is gone";
    EXPECT_EQ(outcome.warnings.back(),
              (Warning{WarningKind::triedAgain, {std::string("stopped by signal 11 (Segmentation fault)")}}));
    EXPECT_EQ(log, (std::vector<std::string>{
                       "tried once more, with one decoding thread: stopped by signal 11 (Segmentation fault)"}));
}

TEST(Worker, ThatLoopsIsToldAfterAWhile) {
    EXPECT_EQ(failureOf("loops without end", {.answer = 1500ms}),
              told("loops without end", "nothing was heard from it for 2 seconds"));
}

TEST(Worker, ThatGivesSignsOfLifeMayTakeLonger) {
    EXPECT_EQ(failureOf("works for long", {.answer = 2000ms}), "");
}

TEST(Worker, ThatSendsRubbishIsToldSo) {
    for (const char *name : {"sends rubbish", "sends a lot", "sends descriptors", "tells of a frame below 0",
                             "answers what was not asked"})
        EXPECT_EQ(failureOf(name), told(name, "its answer cannot be understood"));
}

TEST(Worker, ThatClosesTheChannelIsToldSo) {
    EXPECT_EQ(failureOf("closes the channel"), told("closes the channel", "it ended early, with status 0"));
}

TEST(Worker, CannotFloodWhoShowsProgress) {
    Handed handed("tells every frame");
    int calls = 0;
    std::int64_t last = 0;
    handed.control.onFrameProgress = [&](std::int64_t frame, std::int64_t) {
        ++calls;
        last = frame;
    };
    EXPECT_TRUE(handed.convert().written);
    EXPECT_LT(calls, 20'000);
    EXPECT_EQ(last, 20'000);
}

TEST(Worker, IsToldToStop) {
    Handed handed("waits", TEST_WORKER, {.answer = 1h, .stop = 1h}); // it is not stopped by force
    std::atomic<bool> cancelled = false;
    handed.control = {.cancelRequested = &cancelled,
                      .onFrameProgress = [&](std::int64_t, std::int64_t) { cancelled = true; }};
    EXPECT_FALSE(handed.convert().written);
}

TEST(Worker, ThatDoesNotStopIsStopped) {
    Handed handed("loops without end", TEST_WORKER, {.answer = 1h, .stop = 100ms});
    std::atomic<bool> cancelled = true;
    handed.control.cancelRequested = &cancelled;
    EXPECT_FALSE(handed.convert().written);
}

TEST(Worker, LooksAtOneFileAfterAnother) {
    Handed handed("converts");
    const MediaFacts facts = handed.workers.look(handed.input);
    EXPECT_TRUE(facts.isSpatial);
    EXPECT_EQ(handed.workers.look(handed.input).values.horizontalFOV, facts.values.horizontalFOV) << "it stays";
    EXPECT_EQ(handed.workers.measure(handed.input), (PictureSize{5, 1})) << "the bytes of the input";
}

TEST(Worker, ExaminesThePicture) {
    Handed handed("converts");
    const StereoLayout layout{EyeArrangement::overUnder, true, true, LayoutSource::user};
    const StereoFindings found = handed.workers.examine(handed.input, layout);
    EXPECT_EQ(found.seen, EyeArrangement::overUnder);
    EXPECT_TRUE(found.looksFlat) << "half";
    EXPECT_TRUE(found.probablySwapped) << "right eye first";
    EXPECT_DOUBLE_EQ(found.disparity.value().farthest, 2);
    Handed damaged("fails in media");
    EXPECT_THROW(damaged.workers.examine(damaged.input, layout), media::MediaError);
}

TEST(Worker, ThatFallsOverAtALookIsReplaced) {
    Handed bad("falls over at a look");
    EXPECT_THROW(bad.workers.look(bad.input), ProcessorError);
    const Handed good("converts");
    EXPECT_TRUE(bad.workers.look(good.input).isSpatial);
}

TEST(Worker, ErrorsKeepTypeAndText) {
    try {
        Handed("fails in the engine").convert();
        FAIL();
    } catch (const ProcessorError &error) {
        EXPECT_STREQ(error.what(), processorError(words("error.no.video.track")).what());
    }
    try {
        Handed("fails in a photo").convert();
        FAIL();
    } catch (const SpatialPhotoError &error) {
        EXPECT_EQ(error.kind(), SpatialPhotoError::Case::cannotOpenFile);
        EXPECT_STREQ(error.what(),
                     SpatialPhotoError::cannotOpenFile("fails in a photo.mov", words("reason.damaged")).what());
    }
    try {
        Handed("fails in media").convert();
        FAIL();
    } catch (const media::MediaError &error) {
        EXPECT_EQ(error.operation(), media::MediaOperation::decode);
        EXPECT_EQ(error.reason(), media::MediaReason::endsEarly);
        EXPECT_EQ(error.code(), -7);
        EXPECT_EQ(error.details(), "details");
        EXPECT_EQ(error.file().filename(), "fails in media.mov");
    }
}

TEST(Worker, SpeaksTheLanguageOfWhoAsks) {
    setTextLocale("ja");
    try {
        Handed("fails in the engine").convert();
        ADD_FAILURE();
    } catch (const ProcessorError &error) {
        EXPECT_EQ(std::string(error.what()), englishText("error.no.video.track"));
        EXPECT_NE(error.shown(), error.what());
    }
    setTextLocale("en");
}

TEST(Worker, ThatIsMissingIsAnErrorOfTheFile) {
    EXPECT_EQ(Handed("converts", "/nowhere/lumetwin-worker").failure(),
              told("converts", "it cannot be started: No such file or directory"));
}

bool isRunning(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/stat");
    std::string number, name, state;
    return static_cast<bool>(status >> number >> name >> state) && state != "Z";
}

TEST(Worker, DoesNotOutliveWhoStartedIt) {
    const ProgramResult started = runProgram({START_AND_LEAVE});
    ASSERT_EQ(started.status, 0) << started.errors;
    const pid_t worker = std::stoi(started.output);
    for (int tenths = 0; tenths < 600 && isRunning(worker); ++tenths)
        std::this_thread::sleep_for(100ms);
    EXPECT_FALSE(isRunning(worker));
}

/// The child processes of this process.
std::vector<pid_t> children() {
    std::vector<pid_t> found;
    for (const auto &entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream status(entry.path() / "stat");
        pid_t number = 0, parent = 0;
        std::string name, state;
        if (status >> number >> name >> state >> parent && parent == getpid())
            found.push_back(number);
    }
    return found;
}

TEST(Worker, IsForkedFromANewProcessWhenTheFirstOneWasKilled) {
    Handed handed("converts");
    const auto inspector = static_cast<pid_t>(handed.workers.look(handed.input).values.horizontalFOV.value_or(0));
    int killed = 0;
    for (const pid_t process : children())
        if (process != inspector && kill(process, SIGKILL) == 0)
            ++killed;
    EXPECT_GE(killed, 1);
    for (int file = 0; file < 2; ++file)
        EXPECT_TRUE(handed.convert().written);
    EXPECT_EQ(handed.workers.look(handed.input).values.horizontalFOV, inspector) << "the others go on";
}

TEST(Worker, OutlivesTheThreadThatAskedForIt) {
    std::unique_ptr<worker::WorkerProcess> original, process;
    std::thread([&] {
        original = std::make_unique<worker::WorkerProcess>(TEST_WORKER);
        process = std::make_unique<worker::WorkerProcess>(*original);
    }).join();
    EXPECT_TRUE(process->next(60s).has_value()) << "it is ready";
    std::this_thread::sleep_for(50ms);
    EXPECT_TRUE(isRunning(process->number()));
}

} // namespace
} // namespace lumetwin::test
