// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin {

/// The range, initial value and number of decimals of a value that has a slider and a field in the form.
struct StereoRange {
    double minimum;
    double maximum;
    double start;
    int decimals;

    constexpr bool accepts(double value) const { return value >= minimum && value <= maximum; }
};

inline constexpr StereoRange fovRange{10, 180, 63.4, 1};      // degrees
inline constexpr StereoRange disparityRange{-100, 100, 2, 2}; // percent
inline constexpr StereoRange baselineRange{1, 200, 19.24, 2}; // millimetres
inline constexpr StereoRange qualityRange{0, 1, 0.75, 2};     // of lossy images

} // namespace lumetwin
