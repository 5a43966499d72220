// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"
#include "tools/BatchOptions.h"
#include "tools/Console.h"

#include <functional>

namespace lumetwin::batch {

// Exit statuses.
inline constexpr int allSucceeded = 0;
inline constexpr int someFailed = 1;
inline constexpr int wrongUsage = 2;
inline constexpr int interrupted = 130;

/// Converts the inputs of the options. Returns the exit status.
int convertCommand(BatchOptions &options, Console &console, MediaOperations operations);

/// Prints facts about the files. Returns the exit status: someFailed when a file cannot be read.
int inspectCommand(const BatchOptions &options, Console &console, const MediaOperations &operations);

/// Runs the whole program. arguments[0] is the program's name. `operations` makes those for all files, unless
/// --in-process is given. Returns the exit status.
int runBatchTool(int count, const char *const *arguments, const std::function<MediaOperations()> &operations);

} // namespace lumetwin::batch
