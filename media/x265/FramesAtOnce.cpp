// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/FramesAtOnce.h"

#include <algorithm>
#include <cmath>

namespace lumetwin::media::x265 {

int framesAtOnce(int processors, int width, int height, int unitSize) {
    constexpr int fewest = 2;
    // With 16, the rate control answers so late that a film lost 1.9 dB; see bench/README.md.
    constexpr double most = 8;
    // A frame waits for the rows of another one that it refers to.
    constexpr double surplus = 1.5;
    if (processors <= 2)
        return fewest;
    const double columns = (width + unitSize - 1) / unitSize;
    const double rows = (height + unitSize - 1) / unitSize;
    const double rowsAtOnce = rows * columns / (columns + 2 * (rows - 1));
    return static_cast<int>(std::min(most, 1 + std::ceil(surplus * processors / rowsAtOnce)));
}

} // namespace lumetwin::media::x265
