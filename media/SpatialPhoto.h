// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"

#include <array>
#include <cstdint>
#include <optional>

namespace lumetwin::media {

/// The values that a headset needs to show two pictures in stereo.
struct SpatialPhotoFacts {
    double focalLength = 0;                 ///< pixels; may be infinite
    std::array<double, 2> principalPoint{}; ///< pixels
    /// Position of the right camera in micrometres, x to the right. The left camera is the origin.
    std::array<std::int32_t, 3> rightPosition{};
    std::int64_t disparityAdjustment = 0; ///< ten-thousandths of the image width
};

/// Writes a HEIC file with a stereo pair, the left picture first and primary, coded with a fixed high quality. Samples
/// are sRGB. Both pictures get the metadata. The pictures are released while they are coded. Throws MediaError, and
/// Cancelled when cancelled.
void writeSpatialPhoto(const OutputFile &file, Picture left, Picture right, const SpatialPhotoFacts &facts,
                       const ImageMetadata &metadata, const Cancellation &cancellation = {});

enum class Eye { left, right };

enum class PhotoSamples {
    coded, ///< as coded: Y'CbCr planes with their subsampling
    rough, ///< the same without the filter that smooths the edges of blocks: for a reduced picture that is shown soon
    rgb,   ///< converted to RGB
};

/// The stereo facts in a photo's headers, in the units of the file. Empty for files that are not HEIF.
struct StereoPhotoFacts {
    /// A camera's focal length in pixels of an image with this width.
    struct Lens {
        double focalLength = 0;
        double imageWidth = 0;
    };

    bool hasStereoGroup = false; ///< a group of the type `ster` (ISO/IEC 23008-12)
    bool hasBothEyes = false;    ///< and the file has the images of it, or at least two
    std::uint32_t width = 0;     ///< pixels of the left eye, 0 without both eyes
    std::uint32_t height = 0;
    std::optional<Lens> lens; ///< of the first image that states it
    /// The x position of the first camera that is not at the origin, in micrometres.
    std::optional<std::int32_t> cameraPosition;
    std::optional<std::int32_t> disparityAdjustment; ///< ten-thousandths of the image width: the left eye's, else the
                                                     ///< right one's
};

StereoPhotoFacts stereoPhotoFacts(const ImageFile &file);

/// Reads the two pictures of a stereo pair and calls `take` with each, the left one first, with its metadata. If the
/// group lacks one of its images, the first two images of the file are used. Coded samples of both pictures are decoded
/// at the same time on two threads. RGB samples need more memory, so the right picture is decoded after the left one
/// was taken. Throws MediaError, exceptions of `take`, std::logic_error for a file without both eyes, and Cancelled.
void readSpatialPhoto(const ImageFile &file, PhotoSamples samples, const EyeTaker &take,
                      const Cancellation &cancellation = {});
/// The same for one of them.
StillImage readSpatialPhotoEye(const ImageFile &file, Eye eye, PhotoSamples samples,
                               const Cancellation &cancellation = {});

} // namespace lumetwin::media
