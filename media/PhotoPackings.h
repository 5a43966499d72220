// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"
#include "media/InputFile.h"
#include "media/StereoPacking.h"

#include <optional>
#include <string>

namespace lumetwin::media {

/// What a photo file that is not spatial says of its eyes.
struct PhotoPackings {
    /// From the JPS block, Stim (CIPA DC-006) or spherical XMP of a JPEG file, or from sTER of a PNG file; nullopt
    /// where nothing is said, and where the eyes are pictures of their own.
    std::optional<StereoPacking> packing;
    /// The pictures of a Multi-Picture file (CIPA DC-007) with the type "disparity". Two or more of them are eyes, from
    /// left to right.
    int eyePictures = 0;
    /// Pictures of that file for a panorama or for several angles. Thumbnails and gain maps count nowhere.
    int otherPictures = 0;
    std::optional<double> baseline;              ///< metres
    std::optional<double> convergence;           ///< degrees
    std::optional<double> horizontalFieldOfView; ///< of one eye, in degrees, from Exif
    std::string projection; ///< "equi" (equirectangular), "cyli" (cylindrical), "fish" (fisheye); otherwise empty

    bool operator==(const PhotoPackings &) const = default;
};

/// Reads a file's headers and metadata, no samples. What is missing or damaged counts as not said.
PhotoPackings readPhotoPackings(const InputFile &file) noexcept;

/// Reads the first two eyes of a Multi-Picture file, left, then right, as ImageFile::read() does, each with its own
/// metadata. They have one size. Throws MediaError where the file has fewer than two eyes, or where one of them is not
/// in the file, is damaged, or has another size; and Cancelled.
void readEyePictures(const ImageFile &file, const EyeTaker &take, const Cancellation &cancellation = {});

} // namespace lumetwin::media
