// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/StereoPacking.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumetwin::media::images {

/// What stands in an image file before and beside its samples.
struct StillHeaders {
    int width = 0; ///< pixels; 0 where it is not known
    int height = 0;
    std::vector<std::uint8_t> exif; ///< begins with the TIFF header
    std::string xmp;
    std::optional<StereoPacking> packing;
    std::optional<double> baseline; ///< metres
};

} // namespace lumetwin::media::images
