// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/Alert.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace lumetwin {

// What the progress sheet says, as functions of what the batch reports.

/// The share of a total; 0 of no total. More than announced is more than 1.
double fractionOf(std::int64_t current, std::int64_t total);
/// The share of the whole batch, 0 to 1: the files that are done and the share of the current one. For totals from 1.
double batchFraction(std::int64_t filesDone, std::int64_t filesTotal, double fractionOfFile);

std::string filesText(std::int64_t current, std::int64_t total);
/// A total below 1 is an unknown one.
std::string framesText(std::int64_t current, std::int64_t total);
/// Whole minutes, also beyond an hour, and seconds.
std::string elapsedText(std::chrono::steady_clock::duration elapsed);
/// A line of the details that the alert at the end can unfold.
std::string detailLine(const std::string &fileName, const std::string &reason);

/// Asks whether to stop; the first button stops.
Alert stopQuestion();
/// Tells how a batch went. Its side button leads to the outputs, where there are any to show.
Alert resultAlert(bool success, const std::string &message, const std::string &details, bool showsOutputs);

} // namespace lumetwin
