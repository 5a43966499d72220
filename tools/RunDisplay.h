// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/batch/VideoProcessor.h"
#include "tools/Console.h"
#include "tools/ProgressLine.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace lumetwin::batch {

/// Shows the progress and results of a run on the console. It sets the processor's callbacks, which are called on the
/// run's threads.
class RunDisplay {
public:
    RunDisplay(VideoProcessor &processor, Console &console);

    /// Shows and updates the progress until the run has ended.
    void showProgressUntilEnd();

    /// Prints the summary. Call it after the run has ended.
    void printSummary();

    // The result of the run; valid after it has ended.
    bool success() const { return success_; }
    const std::string &message() const { return message_; }

private:
    using Clock = std::chrono::steady_clock;

    void keepLogLine(const std::string &line);
    void beginFile(std::int64_t index, std::int64_t total, const std::string &name);
    void updateFrame(std::int64_t current, std::int64_t total);
    void showResult(const FileResult &result);
    void showConverted(const FileResult &result);
    void complete(bool success, const std::string &message);
    void redraw();

    VideoProcessor &processor_;
    Console &console_;
    const Clock::time_point startTime_ = Clock::now();
    std::mutex mutex_; // guards everything below, and the console
    std::condition_variable completion_;
    BatchProgress progress_;
    std::optional<Clock::time_point> firstFrame_;
    std::vector<std::string> logged_; ///< of the current file
    std::string message_;
    bool started_ = false;
    bool stopShown_ = false;
    bool success_ = false;
    bool runEnded_ = false;
};

} // namespace lumetwin::batch
