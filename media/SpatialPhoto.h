// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"

#include <array>
#include <cstdint>
#include <optional>

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
/// quality. Samples are in sRGB; the metadata goes to both pictures. The pictures are released as they are coded.
/// Throws MediaError, and Cancelled when it is to stop.
void writeSpatialPhoto(const OutputFile &file, Picture left, Picture right, const SpatialPhotoFacts &facts,
                       const ImageMetadata &metadata, const Cancellation &cancellation = {});

enum class Eye { left, right };

enum class PhotoSamples {
    coded, ///< as coded: Y'CbCr planes, subsampled as they are
    rgb,   ///< converted to RGB
};

/// What a photo's headers say of its stereo pair, in the file's own units. Nothing in it for other than HEIF files.
struct StereoPhotoFacts {
    /// A camera's focal length, in pixels of an image of that width.
    struct Lens {
        double focalLength = 0;
        double imageWidth = 0;
    };

    bool hasStereoGroup = false; ///< a group of the type `ster` (ISO/IEC 23008-12)
    bool hasBothEyes = false;    ///< and the file has the images of it, or at least two
    std::optional<Lens> lens;    ///< of the first image that states it
    /// Of the first camera that is not at the origin: x, micrometres.
    std::optional<std::int32_t> cameraPosition;
    std::optional<std::int32_t> disparityAdjustment; ///< ten-thousandths of the image width: the left eye's, else the
                                                     ///< right one's
};

StereoPhotoFacts stereoPhotoFacts(const ImageFile &file);

/// Reads the two pictures of a stereo pair and hands them over, the left one first, each with its metadata. A group
/// that lacks one of its images means the file's first two. Samples as coded are decoded both at once, on two threads;
/// as RGB they take more memory, and the right one is decoded when the left one was taken. Throws MediaError, what
/// `take` throws, std::logic_error for a file without both eyes, and Cancelled.
void readSpatialPhoto(const ImageFile &file, PhotoSamples samples, const EyeTaker &take,
                      const Cancellation &cancellation = {});

} // namespace lumetwin::media
