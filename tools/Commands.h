// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"
#include "tools/BatchOptions.h"
#include "tools/Console.h"

#include <functional>

namespace lumetwin::batch {

// Exit statuses.
inline constexpr int allWell = 0;
inline constexpr int someFailed = 1;
inline constexpr int wrongUsage = 2;
inline constexpr int interrupted = 130;

/// Converts what the options name; the exit status.
int convertCommand(BatchOptions &options, Console &console, MediaOperations operations);

/// Describes the files; the exit status: files that cannot be read have failed.
int inspectCommand(const BatchOptions &options, Console &console, const MediaOperations &operations);

/// The whole program. The arguments include the program's name.
int runBatchTool(int count, const char *const *arguments,
                 const std::function<MediaOperations()> &operations = MediaOperations::inProcess);

} // namespace lumetwin::batch
