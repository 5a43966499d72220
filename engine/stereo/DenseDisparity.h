// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/stereo/LumaPlane.h"
#include "media/EyePair.h"

#include <cstdint>
#include <vector>

namespace lumetwin {

/// The disparity (x in the right eye minus x in the left eye) of each pixel of one eye, row by row.
struct DenseDisparity {
    int width = 0;
    int height = 0;
    std::vector<std::int16_t> disparities;
    std::vector<std::uint8_t> agrees; ///< whether the other eye finds the same; false in strips that it does not see

    std::size_t index(int x, int y) const { return static_cast<std::size_t>(y) * width + x; }
};

/// Compares two planes of one size pixel by pixel, for disparities from `nearest` to `farthest`; the right eye's
/// picture is `lower` rows lower. Differences of brightness between the eyes do not matter.
media::EyePair<DenseDisparity> denseDisparity(const media::EyePair<LumaPlane> &planes, int nearest, int farthest,
                                              int lower);

} // namespace lumetwin
