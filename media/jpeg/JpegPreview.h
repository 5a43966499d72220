// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/ImagePreview.h"
#include "media/InputFile.h"
#include "media/Picture.h"

#include <cstdint>
#include <limits>
#include <optional>

namespace lumetwin::media::images {

/// See readPreview(). An empty picture when the colour space has no brightness of its own (CMYK). Throws MediaError.
Picture readJpegPreview(const InputFile &file, int width, int height);

/// Where an image lies in a file.
struct ImagePlace {
    std::uint64_t begin = 0;
    std::uint64_t end = std::numeric_limits<std::uint64_t>::max();
};

/// See readReduced(): grey or RGB samples, with the ICC profile. nullopt for CMYK. Throws MediaError.
std::optional<ReducedImage> readReducedJpeg(const InputFile &file, const ImagePlace &place, const NeededSize &needed);

} // namespace lumetwin::media::images
