// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/zimg/RangeTable.h"

#include <algorithm>
#include <cmath>

namespace lumetwin::media::zimg {

namespace {

/// How values from 0 (black, neutral) to 1 (white) are stored in samples of a depth.
struct Scale {
    double zero;
    double one;
};

Scale scaleOf(int depth, bool chroma, ColourRange range) {
    const double eighth = std::ldexp(1, depth - 8);
    const double largest = std::ldexp(1, depth) - 1;
    if (chroma)
        return {128 * eighth, range == ColourRange::full ? largest : 224 * eighth};
    return range == ColourRange::full ? Scale{0, largest} : Scale{16 * eighth, 219 * eighth};
}

} // namespace

std::vector<std::uint16_t> rangeTable(int depth, bool chroma, ColourRange from, ColourRange to, int targetDepth) {
    const Scale source = scaleOf(depth, chroma, from);
    Scale target = scaleOf(16, chroma, to);
    if (chroma)
        target.one = scaleOf(targetDepth, chroma, to).one * std::ldexp(1, 16 - targetDepth);
    std::vector<std::uint16_t> table(std::size_t{1} << depth);
    for (std::size_t value = 0; value < table.size(); ++value) {
        const double part = (static_cast<double>(value) - source.zero) / source.one;
        table[value] =
            static_cast<std::uint16_t>(std::lround(std::clamp(target.zero + part * target.one, 0.0, 65535.0)));
    }
    return table;
}

} // namespace lumetwin::media::zimg
