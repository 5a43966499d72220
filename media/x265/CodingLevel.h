// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace lumetwin::media::x265 {

/// A level of the Main tier (ITU-T H.265, tables A.8 and A.9).
struct CodingLevel {
    int number = 0;                  ///< ten times the level: 41 means 4.1; 85 means no limits
    std::int64_t highestBitRate = 0; ///< bits per second
};

/// The lowest level for pictures of the given size and rate and the given bit rate.
CodingLevel codingLevel(int width, int height, double frameRate, std::int64_t bitRate);

} // namespace lumetwin::media::x265
