// SPDX-License-Identifier: GPL-3.0-or-later
// An attacker who controls a worker: every attempt is refused and becomes an error of the file.
#include "media/Descriptor.h"
#include "tests/worker/Attempts.h"
#include "tests/worker/Handed.h"

#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sys/stat.h>
#include <sys/wait.h>

namespace lumetwin::test {
namespace {

namespace fs = std::filesystem;

std::set<std::string> namesIn(const fs::path &folder) {
    std::set<std::string> names;
    for (const auto &entry : fs::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    return names;
}

class ConfinedWorker : public testing::TestWithParam<const char *> {};

TEST_P(ConfinedWorker, IsRefusedEverything) {
    for (const Attempt &attempt : allAttempts()) {
        SCOPED_TRACE(attempt.name);
        Handed handed(attempt.name, GetParam());
        struct stat before {
        }, after{};
        stat(handed.inputName.c_str(), &before);
        const std::set<std::string> names = namesIn(handed.folder.path());
        EXPECT_EQ(handed.failure(), attempt.name + ": " + std::strerror(attempt.refusal));
        stat(handed.inputName.c_str(), &after);
        EXPECT_EQ(before.st_ctim.tv_nsec, after.st_ctim.tv_nsec) << "neither its content nor its facts were changed";
        EXPECT_EQ(readFile(handed.inputName), (Bytes{'i', 'n', 'p', 'u', 't'}));
        EXPECT_EQ(namesIn(handed.folder.path()), names);
    }
}

TEST_P(ConfinedWorker, FindsNoMemoryWithoutEnd) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer's worker has no limit of memory";
#endif
    EXPECT_THROW(Handed("allocates without end", GetParam()).convert(), std::bad_alloc);
}

TEST_P(ConfinedWorker, DoesItsWork) {
    Handed handed("converts", GetParam());
    EXPECT_TRUE(handed.convert().written);
    EXPECT_EQ(handed.written(), "input");
}

INSTANTIATE_TEST_SUITE_P(WithLandlock, ConfinedWorker, testing::Values(TEST_WORKER));
INSTANTIATE_TEST_SUITE_P(WithoutLandlock, ConfinedWorker, testing::Values(TEST_WORKER_WITHOUT_LANDLOCK));

/// The errno of an attempt in an unconfined process; 0 if it succeeds.
int errorInOrdinaryProcess(const Attempt &attempt, const Surroundings &around) {
    const pid_t child = fork();
    if (child == 0) {
        errno = 0;
        _exit(attempt.act(around) >= 0 ? 0 : errno);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Confinement, IsWhatRefusesTheAttempts) {
    for (const Attempt &attempt : allAttempts()) {
        if (!attempt.everybodyMay)
            continue;
        const Handed handed(attempt.name);
        EXPECT_EQ(errorInOrdinaryProcess(attempt, {handed.input.descriptor(), handed.output.descriptor(),
                                                   handed.inputName, handed.outputName}),
                  0)
            << attempt.name;
    }
}

TEST(Confinement, IsReported) {
    worker::Workers workers(TEST_WORKER);
    const worker::ConfinementReport report = workers.confinement();
    EXPECT_TRUE(report.systemCalls);
    worker::Workers without(TEST_WORKER_WITHOUT_LANDLOCK);
    EXPECT_EQ(without.confinement().landlock, 0);
    EXPECT_EQ(worker::describe({.landlock = 7, .systemCalls = true, .memoryLimited = true}),
              "system calls, Landlock (version 7), memory limit");
    EXPECT_EQ(worker::describe({.landlock = 0, .systemCalls = true, .memoryLimited = false}),
              "system calls, no Landlock, no memory limit");
}

/// A line of /proc/PROCESS/status.
std::string statusLine(const fs::path &task, const std::string &name) {
    std::ifstream status(task / "status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name + ":"))
            return line.substr(name.size() + 2);
    return {};
}

TEST(Confinement, HoldsForEveryThread) {
    worker::WorkerProcess original(TEST_WORKER);
    worker::WorkerProcess process(original);
    Handed handed("waits");
    process.send(worker::ConvertRequest{.kind = ConversionKind::spatialVideoToSBS,
                                        .settings = std::make_shared<ConversionSettings>(),
                                        .system = {},
                                        .input = handed.inputName,
                                        .output = handed.outputName,
                                        .language = "en"},
                 std::array{handed.input.descriptor(), handed.output.descriptor()});
    while (!std::holds_alternative<worker::Progress>(process.next(std::chrono::seconds(60)).value())) {
    }
    int threads = 0;
    for (const auto &task : fs::directory_iterator("/proc/" + std::to_string(process.number()) + "/task")) {
        ++threads;
        EXPECT_EQ(statusLine(task, "Seccomp"), "2");
        EXPECT_EQ(statusLine(task, "NoNewPrivs"), "1");
        EXPECT_EQ(statusLine(task, "CapEff"), "0000000000000000");
        EXPECT_EQ(statusLine(task, "CapPrm"), "0000000000000000");
    }
    EXPECT_GE(threads, 2);
}

TEST(Confinement, LeavesNothingOpenAndNoEnvironment) {
    const media::Descriptor left(open("/etc/hostname", O_RDONLY)); // not marked to be closed
    setenv("SECRET", "token", 1);
    EXPECT_EQ(Handed("counts descriptors").failure(), "open:");
    EXPECT_EQ(Handed("tells its environment").failure().find("SECRET"), std::string::npos);
}

TEST(Confinement, LeavesTheNumberOfProcessors) {
    EXPECT_EQ(Handed("tells the processors").failure(),
              "processors: " + std::to_string(std::thread::hardware_concurrency()));
}

} // namespace
} // namespace lumetwin::test
