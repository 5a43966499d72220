// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/FileResult.h"

#include <cstdint>
#include <string>
#include <vector>

namespace lumetwin::batch {

/// The number of files of a run for each result.
struct RunTotals {
    std::int64_t converted = 0;        ///< with and without warnings
    std::int64_t withWarnings = 0;     ///< of those that were or would be converted
    std::int64_t wouldBeConverted = 0; ///< in a dry run, with and without warnings
    std::int64_t skipped = 0;
    std::int64_t upToDate = 0;
    std::int64_t failed = 0;
    std::int64_t cancelled = 0;
    std::int64_t notReached = 0;
};

RunTotals totalsOf(const std::vector<FileResult> &results);

/// A line such as "Converted: 3 (1 with warnings), skipped: 2, up to date: 4, failed: 1 (0:12)", in the user's
/// language. "With warnings", "up to date" and "unfinished" are left out while their number is 0.
std::string summaryLine(const RunTotals &totals, double seconds);

} // namespace lumetwin::batch
