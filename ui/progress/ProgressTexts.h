// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/alerts/Alert.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace lumetwin {

// The texts of the progress sheet, as functions of what the batch reports.

/// current / total, or 0 for a total below 1. More than 1 when current is above the total.
double fractionOf(std::int64_t current, std::int64_t total);
/// The finished share of the whole batch, 0 to 1: the files that are done and the share of the current one. filesTotal
/// is at least 1.
double batchFraction(std::int64_t filesDone, std::int64_t filesTotal, double fractionOfFile);
/// The same, where each file counts by its frames. Where there is not one number a file, or no frame, all files count
/// the same.
double batchFraction(const std::vector<double> &frames, std::int64_t filesDone, std::int64_t filesTotal,
                     double fractionOfFile);

/// fraction: the finished share of the whole batch.
std::string filesText(std::int64_t current, std::int64_t total, double fraction);
/// A total below 1 means that the total is not known. rate: frames per second, if known.
std::string framesText(std::int64_t current, std::int64_t total, std::optional<double> rate = {});
/// How long the rest of the batch will take at the speed so far; nullopt while it is too early for an estimate.
std::optional<std::chrono::seconds> timeLeft(std::chrono::steady_clock::duration elapsed, double fraction);
/// The elapsed time in minutes (more than 59 when needed) and seconds, and the time left if known.
std::string elapsedText(std::chrono::steady_clock::duration elapsed, std::optional<std::chrono::seconds> left = {});
/// The text about the current file while there are no frames to count.
std::string activityText(const std::string &fileName);
/// One line of the details in the alert at the end. The file is named once, even when the reason names it too.
std::string detailLine(const std::string &fileName, const std::string &reason);

/// The result of a batch.
struct BatchResult {
    bool success = false;
    std::string message = {};
    std::string details = {};
    bool showsOutputs = false;
    std::int64_t skipped = 0; ///< files
    std::set<std::string> skipReasons = {};
    std::int64_t warned = 0; ///< converted files that have warnings
    bool anyConverted = false;

    /// Whether nothing was converted and nothing failed.
    bool isEmpty() const;
};

/// Asks whether to stop. The first button stops; the second one continues and is the default.
Alert stopQuestion();
/// Before the window closes while a batch runs.
Alert quitQuestion();
/// Reports the result of a batch. When nothing was converted, it says why and what the user can do. Its side button
/// opens the folder of the outputs, if there are any.
Alert resultAlert(const BatchResult &result);

} // namespace lumetwin
