// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>

namespace lumetwin {

/// The items of a spatial photo's two eyes.
struct StereoPair {
    std::uint32_t left = 0;
    std::uint32_t right = 0;
};

/// Which images of a photo are its eyes, by its stereo group. Decodes nothing. Throws SpatialPhotoError.
StereoPair readStereoPair(const std::filesystem::path &file);

} // namespace lumetwin
