// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"

#include <algorithm>
#include <cstdint>

namespace lumetwin::media::images {

enum class Alpha { none, straight, premultiplied };

/// The samples of one pixel in an interleaved row: grey or RGB, then optional alpha, then others.
struct PixelLayout {
    int channels = 3;          ///< samples from one pixel to the next
    Alpha alpha = Alpha::none; ///< the sample that follows the colours
};

template <typename Sample> Sample *planeRow(const Picture &picture, int plane, int y) {
    return reinterpret_cast<Sample *>(picture.planes[plane].data + y * picture.planes[plane].stride);
}

/// The value of a sample with the given opacity over black.
template <typename Sample> Sample overBlack(Sample value, Sample alpha) {
    constexpr std::uint32_t full = static_cast<Sample>(~Sample{0});
    return static_cast<Sample>((std::uint32_t{value} * alpha + full / 2) / full);
}

/// Copies interleaved pixels to the picture's planes, beginning at column x of row y. Transparent ones are drawn on
/// black.
template <typename Sample>
void scatterRow(const Sample *row, PixelLayout layout, const Picture &picture, int x, int y, int count) {
    const int colours = picture.format.planeCount();
    for (int plane = 0; plane < colours; ++plane) {
        Sample *out = planeRow<Sample>(picture, plane, y) + x;
        const Sample *in = row + plane;
        if (layout.alpha != Alpha::straight) {
            for (int i = 0; i < count; ++i)
                out[i] = in[static_cast<std::ptrdiff_t>(i) * layout.channels];
            continue;
        }
        const Sample *alpha = row + colours;
        for (int i = 0; i < count; ++i) {
            const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(i) * layout.channels;
            out[i] = overBlack<Sample>(in[at], alpha[at]);
        }
    }
}

/// Copies a row of the picture's planes to interleaved samples.
template <typename Sample> void gatherRow(const Picture &picture, int y, Sample *row) {
    const int channels = picture.format.planeCount();
    for (int plane = 0; plane < channels; ++plane) {
        const Sample *in = planeRow<Sample>(picture, plane, y);
        Sample *out = row + plane;
        for (int i = 0; i < picture.width; ++i)
            out[static_cast<std::ptrdiff_t>(i) * channels] = in[i];
    }
}

} // namespace lumetwin::media::images
