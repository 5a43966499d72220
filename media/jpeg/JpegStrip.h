// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

namespace lumetwin::media::images {

/// Bytes allocated by the JPEG library.
struct JpegBytes {
    struct Free {
        void operator()(std::uint8_t *bytes) const { std::free(bytes); }
    };
    std::unique_ptr<std::uint8_t, Free> memory;
    std::size_t size = 0;

    std::span<std::uint8_t> all() const { return {memory.get(), size}; }
};

struct JpegSize {
    int width;
    int height;
};

/// The size in pixels of the smallest independently coded unit, for a picture in a format of JPEG files.
JpegSize jpegUnit(const PictureFormat &format, int quality);

struct JpegStrip {
    Picture picture;                         ///< in a format of JPEG files
    const ImageMetadata *metadata = nullptr; ///< written before the samples
    std::optional<StereoPacking> packing;    ///< the same
    unsigned restartInterval = 0;            ///< units from one restart marker to the next; 0 for none
};

/// Encodes the strip as a separate JPEG file. quality: that of the library, 1 to 100. Throws MediaError, which names
/// the file.
JpegBytes codedStrip(const JpegStrip &strip, int quality, const std::filesystem::path &file);

} // namespace lumetwin::media::images
