// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/preview/PreviewSize.h"
#include "engine/preview/PreviewSource.h"
#include "engine/preview/StereoPreview.h"
#include "media/Picture.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace lumetwin {

/// An eye, scaled to that size, as pixels of a PreviewPicture. Throws MediaError, which names the file, when its
/// profile is unusable.
std::vector<std::uint8_t> previewPixels(const SourceEye &eye, const PreviewSize &size,
                                        const std::filesystem::path &file);

/// The pixels of a picture in 8-bit sRGB.
std::vector<std::uint8_t> interleaved(const media::Picture &rgb);

/// The planes of a picture's pixels.
media::Picture planesOf(const PreviewPicture &picture);

/// A picture of 8-bit RGB planes.
media::Picture emptyPlanes(int width, int height);

} // namespace lumetwin
