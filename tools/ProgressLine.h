// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace lumetwin::batch {

/// Where a batch stands.
struct BatchProgress {
    std::int64_t index = 0; ///< of the file, from 0
    std::int64_t total = 0; ///< files
    std::string fileName;
    std::int64_t frame = 0;  ///< of the file
    std::int64_t frames = 0; ///< of the file, 0 when unknown
    double seconds = 0;      ///< since the file's first frame was reported; 0 before
};

/// The progress as one line that fits into a terminal of that many columns and leaves its last one free. What there is
/// no room for is left out: first the bar, then frames, rate and time, at last the name.
std::string progressLine(const BatchProgress &progress, int columns);

/// Columns that a text takes in a terminal: wide characters take two, combining ones none.
int displayWidth(std::string_view text);

/// The text shortened in its middle, if need be, to at most that many columns.
std::string middleTruncated(std::string_view text, int columns);

/// "0:07", "12:34", "1:02:03".
std::string clockTime(double seconds);

} // namespace lumetwin::batch
