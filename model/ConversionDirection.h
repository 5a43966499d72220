// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace lumetwin {

/// The direction of a conversion.
enum class ConversionDirection {
    spatialToSBS, ///< spatial (MV-HEVC video, stereo-pair HEIC photo) to side-by-side
    sbsToSpatial, ///< side-by-side to spatial
};

inline constexpr std::array allConversionDirections{ConversionDirection::spatialToSBS,
                                                    ConversionDirection::sbsToSpatial};

} // namespace lumetwin
