// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Commands.h"

#include "engine/FileNames.h"
#include "engine/Texts.h"
#include "engine/VideoProcessor.h"
#include "tools/Interruption.h"
#include "tools/ProgressLine.h"

#include <fmt/format.h>

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <optional>
#include <thread>

namespace lumetwin::batch {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds redrawInterval{100};

double secondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

/// Shows a run while it lasts and remembers what its summary needs. The callbacks come from the run's threads.
class RunReport {
public:
    RunReport(VideoProcessor &processor, Console &console) : processor_(processor), console_(console) {
        processor.onLog = [this](const std::string &line) { print(line); };
        processor.onProgress = [this](auto index, auto total, const auto &name) { beginFile(index, total, name); };
        processor.onFrameProgress = [this](auto current, auto total) { noteFrame(current, total); };
        processor.onSkip = [this](const auto &, const auto &) { count(skipped_); };
        processor.onFailure = [this](const auto &name, const auto &message) { noteFailure(name, message); };
        processor.onConverted = [this](const auto &name, const auto &output) { noteOutput(name, output); };
        processor.onComplete = [this](bool success, const auto &message) { complete(success, message); };
    }

    /// Keeps the progress on the screen up to date until the run is over.
    void watch() {
        std::unique_lock lock(mutex_);
        while (!completion_.wait_for(lock, redrawInterval, [this] { return over_; })) {
            if (processor_.cancelRequested && !stopShown_) {
                stopShown_ = true;
                console_.printError(text("batch.stopping"));
            }
            redraw();
        }
        console_.clearProgress();
    }

    /// Prints the summary; the exit status.
    int conclude() {
        if (processor_.cancelRequested || (!success_ && !started_))
            console_.printError(message_);
        if (started_) {
            console_.print(formatted("batch.summary.format", converted_, skipped_,
                                     static_cast<std::int64_t>(failures_.size()), clockTime(secondsSince(began_))));
            for (const std::string &failure : failures_)
                console_.print("  " + failure);
        }
        return processor_.cancelRequested ? interrupted : success_ ? allWell : someFailed;
    }

private:
    void print(const std::string &line) {
        const std::scoped_lock lock(mutex_);
        console_.print(line);
    }

    void beginFile(std::int64_t index, std::int64_t total, const std::string &name) {
        const std::scoped_lock lock(mutex_);
        started_ = true;
        progress_ = {.index = index, .total = total, .fileName = name};
        firstFrame_.reset();
        if (!console_.isLive())
            console_.print(fmt::format("[{}/{}] {}", index + 1, total, name));
    }

    void noteFrame(std::int64_t current, std::int64_t total) {
        const std::scoped_lock lock(mutex_);
        if (!firstFrame_)
            firstFrame_ = Clock::now();
        progress_.frame = current;
        progress_.frames = total;
        progress_.seconds = secondsSince(*firstFrame_);
    }

    void count(std::int64_t &counter) {
        const std::scoped_lock lock(mutex_);
        ++counter;
    }

    void noteFailure(const std::string &name, const std::string &message) {
        const std::scoped_lock lock(mutex_);
        failures_.push_back(name + ": " + message);
    }

    void noteOutput(const std::string &name, const std::filesystem::path &output) {
        const std::scoped_lock lock(mutex_);
        ++converted_;
        console_.print(name + " → " + lastPathComponent(output));
    }

    void complete(bool success, const std::string &message) {
        const std::scoped_lock lock(mutex_);
        success_ = success;
        message_ = message;
        over_ = true;
        completion_.notify_one();
    }

    void redraw() {
        if (console_.isLive() && started_)
            console_.showProgress(progressLine(progress_, console_.columns()));
    }

    VideoProcessor &processor_;
    Console &console_;
    const Clock::time_point began_ = Clock::now();
    std::mutex mutex_; // guards everything below, and the console
    std::condition_variable completion_;
    BatchProgress progress_;
    std::optional<Clock::time_point> firstFrame_;
    std::int64_t converted_ = 0;
    std::int64_t skipped_ = 0;
    std::vector<std::string> failures_;
    std::string message_;
    bool started_ = false;
    bool stopShown_ = false;
    bool success_ = false;
    bool over_ = false;
};

} // namespace

int convertCommand(BatchOptions &options, Console &console, MediaOperations operations) {
    settleInputs(options);
    std::signal(SIGXFSZ, SIG_IGN); // a limit for the size of files becomes an error of the file
    for (const std::string &remark : options.remarks)
        console.printError("lumetwin-batch: " + remark);
    VideoProcessor processor(options.settings, SystemVersion::current(), std::move(operations));
    RunReport report(processor, console);
    const Interruption interruption(processor.cancelRequested);
    std::thread run([&] { processor.processAll(); });
    report.watch();
    run.join();
    return report.conclude();
}

} // namespace lumetwin::batch
