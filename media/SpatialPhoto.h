// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"

#include <array>
#include <cstdint>
#include <filesystem>

namespace lumetwin::media {

/// What a headset needs to show two pictures in depth.
struct SpatialPhotoFacts {
    double focalLength = 0;                 ///< pixels; may be infinite
    std::array<double, 2> principalPoint{}; ///< pixels
    /// Of the right camera, micrometres, x to the right; the left one is the origin.
    std::array<std::int32_t, 3> rightPosition{};
    std::int64_t disparityAdjustment = 0; ///< ten-thousandths of the image width
};

/// Writes a HEIC file of two pictures that form a stereo pair, the left one first and primary, coded at a fixed high
/// quality, under a partial name that becomes the file's own in one rename. Samples are in sRGB; the metadata goes to
/// both pictures. The pictures are released as they are coded. Throws MediaError; nothing is left under the file's name
/// then. Throws Cancelled; nothing is left under the partial name either then.
void writeSpatialPhoto(const std::filesystem::path &file, Picture left, Picture right, const SpatialPhotoFacts &facts,
                       const ImageMetadata &metadata, const Cancellation &cancellation = {});

/// Throws MediaError when a file of this name cannot be created.
void requireWritable(const std::filesystem::path &file);

} // namespace lumetwin::media
