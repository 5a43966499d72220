// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/alerts/Alert.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <string>

namespace lumetwin {

// What the progress sheet says, as functions of what the batch reports.

/// The share of a total; 0 of no total. More than announced is more than 1.
double fractionOf(std::int64_t current, std::int64_t total);
/// The share of the whole batch, 0 to 1: the files that are done and the share of the current one. For totals from 1.
double batchFraction(std::int64_t filesDone, std::int64_t filesTotal, double fractionOfFile);

/// fraction: the share of the whole batch.
std::string filesText(std::int64_t current, std::int64_t total, double fraction);
/// A total below 1 is an unknown one. rate: frames per second, once it is known.
std::string framesText(std::int64_t current, std::int64_t total, std::optional<double> rate = {});
/// How long the rest of the batch will take at the pace so far; nothing before that can be told.
std::optional<std::chrono::seconds> timeLeft(std::chrono::steady_clock::duration elapsed, double fraction);
/// Whole minutes, also beyond an hour, and seconds.
std::string elapsedText(std::chrono::steady_clock::duration elapsed, std::optional<std::chrono::seconds> left = {});
/// What is done to a file before, or without, any frames to count.
std::string workText(const std::string &fileName);
/// A line of the details that the alert at the end can unfold. It names the file once.
std::string detailLine(const std::string &fileName, const std::string &reason);

/// How a batch ended.
struct BatchEnd {
    bool success = false;
    std::string message = {};
    std::string details = {};
    bool showsOutputs = false;
    std::int64_t skipped = 0;               ///< files
    std::set<std::string> skipReasons = {}; ///< each once
    std::int64_t warned = 0;                ///< converted files that have warnings
    bool anyConverted = false;

    /// Whether nothing was converted although nothing failed.
    bool isEmpty() const;
};

/// Asks whether to stop; the first button stops, the other one is the default.
Alert stopQuestion();
/// Tells how a batch went, and when it converted nothing, why, and what can be done. Its side button leads to the
/// outputs, where there are any to show.
Alert resultAlert(const BatchEnd &end);

} // namespace lumetwin
