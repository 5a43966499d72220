// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace lumetwin {

/// The rule for the average bit rate of a film, the same in both directions: these bits for each pixel of each frame at
/// full quality, and at least so many bits per second.
inline constexpr double bitsPerPixel = 0.15;
inline constexpr std::int64_t smallestBitRate = 1'000'000;

} // namespace lumetwin
