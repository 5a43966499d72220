// SPDX-License-Identifier: GPL-3.0-or-later
// A batch continues when workers misbehave, and reports what happened to which file.
#include "engine/batch/VideoProcessor.h"
#include "tests/support/TestMedia.h"
#include "worker/ConfinedOperations.h"
#include "worker/parent/Workers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <thread>

namespace lumetwin::test {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class ConfinedBatch : public testing::Test {
protected:
    ConfinedBatch() {
        settings->inputFiles.emplace();
        settings->outputFolderURL = folder / "out";
        fs::create_directory(folder / "out");
    }

    void add(const std::string &behaviour, const std::string &extension = ".mov") {
        settings->inputFiles->push_back(folder / (behaviour + extension));
        writeFile(settings->inputFiles->back(), std::string("input"));
    }

    const std::vector<FileResult> &run() { return run(processor); }

    const std::vector<FileResult> &run(VideoProcessor &batch) {
        batch.onLog = [this](const std::string &line) { log.push_back(line); };
        batch.processAll();
        return batch.results();
    }

    std::set<std::string> written() const {
        std::set<std::string> names;
        for (const auto &entry : fs::directory_iterator(folder / "out"))
            names.insert(entry.path().filename().string());
        return names;
    }

    std::vector<std::string> log;
    TemporaryFolder folder;
    std::shared_ptr<ConversionSettings> settings = std::make_shared<ConversionSettings>();
    VideoProcessor processor{settings, SystemVersion::current(),
                             worker::confinedOperations(std::make_shared<worker::Workers>(
                                 TEST_WORKER, worker::Timeouts{.answer = std::chrono::seconds(2)}))};
};

TEST_F(ConfinedBatch, GoesOnAfterEachKindOfFailure) {
    for (const char *name : {"aborts", "allocates without end", "converts", "falls over at a look", "loops without end",
                             "reads a secret key", "sends rubbish"})
        add(name);
    std::vector<FileState> states;
    std::vector<std::string> reasons;
    for (const FileResult &result : run()) {
        states.push_back(result.state);
        reasons.push_back(result.reason);
    }
    EXPECT_THAT(states, ElementsAre(FileState::failed, FileState::failed, FileState::convertedWithWarnings,
                                    FileState::failed, FileState::failed, FileState::failed, FileState::failed));
    EXPECT_THAT(reasons, ElementsAre(HasSubstr("aborts.mov failed: stopped by signal 6"), HasSubstr("memory"), "",
                                     HasSubstr("look.mov failed: stopped by signal 11 (Segmentation fault)"),
                                     HasSubstr("end.mov failed: nothing was heard from it for 2 seconds"),
                                     HasSubstr("ermi"), // "Operation not permitted", by a person "permission"
                                     HasSubstr("rubbish.mov failed: its answer cannot be understood")));
    EXPECT_THAT(written(), ElementsAre("converts_sbs.mp4"));
}

TEST_F(ConfinedBatch, LogsOnceThatTheConfinementIsNotFull) {
    const auto operations = worker::confinedOperations(std::make_shared<worker::Workers>(TEST_WORKER_WITHOUT_LANDLOCK));
    add("converts");
    for (int batch = 0; batch < 2; ++batch) {
        VideoProcessor without{settings, SystemVersion::current(), operations};
        run(without);
    }
    EXPECT_THAT(log, Contains(HasSubstr("confined only by: system calls, no Landlock")).Times(1));
}

TEST_F(ConfinedBatch, DoesNotLogThatTheConfinementIsFull) {
    if (!worker::Workers(TEST_WORKER).confinement().isFull())
        GTEST_SKIP() << "this system has no full confinement";
    add("converts");
    run();
    EXPECT_THAT(log, Not(Contains(HasSubstr("confined"))));
}

TEST_F(ConfinedBatch, LeavesNothingOfWhatIsStopped) {
    add("waits");
    processor.onFrameProgress = [&](std::int64_t, std::int64_t) { processor.cancelRequested = true; };
    EXPECT_EQ(run().at(0).state, FileState::cancelled);
    EXPECT_THAT(written(), ElementsAre());
}

TEST_F(ConfinedBatch, LeavesNothingOfWhatIsStoppedByForce) {
    add("loops without end");
    processor.onProgress = [&](std::int64_t, std::int64_t, const std::string &) {
        std::thread([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            processor.cancelRequested = true;
        }).detach();
    };
    EXPECT_EQ(run().at(0).state, FileState::cancelled);
    EXPECT_THAT(written(), ElementsAre());
}

/// Photos beside each other.
class ConfinedPhotos : public ConfinedBatch {
protected:
    void add(const std::string &behaviour) { ConfinedBatch::add(behaviour, ".heic"); }

    static MediaOperations fourAtOnce(worker::Timeouts timeouts) {
        MediaOperations operations =
            worker::confinedOperations(std::make_shared<worker::Workers>(TEST_WORKER, timeouts));
        operations.photosAtOnce = 4;
        return operations;
    }

    std::vector<FileState> statesAfter(VideoProcessor &batch) {
        std::vector<FileState> states;
        for (const FileResult &result : run(batch))
            states.push_back(result.state);
        return states;
    }

    VideoProcessor photos{settings, SystemVersion::current(), fourAtOnce({.answer = std::chrono::seconds(2)})};
};

TEST_F(ConfinedPhotos, CrashIsTheErrorOfOnePhoto) {
    for (const char *name : {"aborts", "converts", "falls over with several threads", "is killed", "works for long"})
        add(name);
    EXPECT_THAT(statesAfter(photos),
                ElementsAre(FileState::failed, FileState::convertedWithWarnings, FileState::convertedWithWarnings,
                            FileState::failed, FileState::convertedWithWarnings));
    EXPECT_THAT(written(),
                ElementsAre("converts_sbs.jpg", "falls over with several threads_sbs.jpg", "works for long_sbs.jpg"));
    std::vector<std::string> names;
    for (const std::string &line : log)
        if (line.find("tried once more") != std::string::npos)
            names.push_back(line.substr(0, line.find(".heic")));
    EXPECT_THAT(names, ElementsAre("[VP] ⚠️ aborts", "[VP] ⚠️ falls over with several threads"))
        << "a kill is no crash";
}

TEST_F(ConfinedPhotos, LooksThatCrashAreErrorsOfTheirPhotos) {
    for (const char *name : {"converts", "falls over at a look", "works for long"})
        add(name);
    EXPECT_THAT(statesAfter(photos),
                ElementsAre(FileState::convertedWithWarnings, FileState::failed, FileState::convertedWithWarnings));
}

TEST_F(ConfinedPhotos, StopLeavesNothingOfAnyPhoto) {
    for (const char *name : {"converts", "loops without end", "waits", "works for long"})
        add(name);
    photos.onProgress = [&](std::int64_t index, std::int64_t, const std::string &) {
        if (index == 1)
            photos.cancelRequested = true;
    };
    EXPECT_THAT(statesAfter(photos), ElementsAre(FileState::convertedWithWarnings, FileState::cancelled,
                                                 FileState::notReached, FileState::notReached));
    EXPECT_THAT(written(), ElementsAre("converts_sbs.jpg"));
}

} // namespace
} // namespace lumetwin::test
