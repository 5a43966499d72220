// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

// What the fields of ConversionSettings take, and what they are at first.

namespace lumetwin {

/// A number of the settings: what it may be, its default, and with how many decimals it is shown.
struct NumberRange {
    double minimum;
    double maximum;
    double start;
    int decimals;

    constexpr bool accepts(double value) const { return value >= minimum && value <= maximum; }
};

inline constexpr NumberRange fovRange{10, 180, 63.4, 1};      // degrees
inline constexpr NumberRange disparityRange{-100, 100, 2, 2}; // percent of the image width
inline constexpr NumberRange baselineRange{1, 200, 19.24, 2}; // millimetres
inline constexpr NumberRange qualityRange{0, 1, 0.75, 2};     // of lossy images

/// Sides of one eye's picture: pixels.
inline constexpr std::int64_t smallestSide = 1;
inline constexpr std::int64_t largestSide = 65535; // of a JPEG
inline constexpr std::int64_t startWidth = 1920;
inline constexpr std::int64_t startHeight = 1080;

} // namespace lumetwin
