// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/photo/SpatialPhotoMetadata.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <numbers>

namespace lumetwin {

namespace {

constexpr double beyondInt64 = 9223372036854775808.0; // 2^63

std::int64_t truncated(double value) {
    if (!(value >= -beyondInt64 && value < beyondInt64)) {
        std::fputs("Fatal error: disparity adjustment is out of range\n", stderr);
        std::abort();
    }
    return static_cast<std::int64_t>(value);
}

/// The value in micrometres, truncated as in videos, and clamped to 32 bits.
std::int32_t micrometres(double millimetres) {
    constexpr double largest = std::numeric_limits<std::int32_t>::max();
    return std::isnan(millimetres) ? 0 : static_cast<std::int32_t>(std::clamp(millimetres * 1000, -largest, largest));
}

} // namespace

media::SpatialPhotoFacts spatialPhotoFacts(const StereoMetadata &values, std::int64_t width, std::int64_t height) {
    const auto w = static_cast<double>(width);
    const auto h = static_cast<double>(height);
    media::SpatialPhotoFacts facts;
    facts.focalLength = (w / 2) / std::tan((values.horizontalFOV / 180 * std::numbers::pi) * 0.5);
    facts.principalPoint = {2 * w, 2 * h};
    facts.rightPosition = {micrometres(values.stereoBaseline), 0, 0};
    facts.disparityAdjustment = truncated(values.disparityAdjustment * 100);
    return facts;
}

} // namespace lumetwin
