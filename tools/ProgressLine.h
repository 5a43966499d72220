// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace lumetwin::batch {

/// The progress of a batch.
struct BatchProgress {
    std::int64_t index = 0; ///< of the file, from 0
    std::int64_t total = 0; ///< files
    std::string fileName;
    std::int64_t frame = 0;  ///< of the file
    std::int64_t frames = 0; ///< of the file, 0 when unknown
    double seconds = 0;      ///< since the first frame report of the file; 0 before it
};

/// The progress as one line for a terminal of that many columns. The last column stays free. When there is not enough
/// space, parts are left out in this order: bar, frame numbers, rate, time left, and at last the name.
std::string progressLine(const BatchProgress &progress, int columns);

/// The number of terminal columns of a text: two for a wide character, none for a combining one.
int displayWidth(std::string_view text);

/// The text, shortened to at most that many columns by an ellipsis in its middle.
std::string elidedInMiddle(std::string_view text, int columns);

/// A duration as "0:07", "12:34" or "1:02:03".
std::string clockTime(double seconds);

} // namespace lumetwin::batch
