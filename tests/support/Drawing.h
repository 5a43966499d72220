// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Compositor.h"

#include <cstdint>
#include <random>

namespace lumetwin::test {

using media::Picture;
using media::PictureFormat;
using media::Rect;

inline constexpr PictureFormat yuv444{media::ColourModel::yuv, 8, 0, 0};
inline constexpr PictureFormat yuv422{media::ColourModel::yuv, 8, 1, 0};
inline constexpr PictureFormat yuv411{media::ColourModel::yuv, 8, 2, 0};
inline constexpr PictureFormat yuv420ten{media::ColourModel::yuv, 10, 1, 1};
inline constexpr PictureFormat rgb8{media::ColourModel::rgb, 8, 0, 0};
inline constexpr PictureFormat rgb16{media::ColourModel::rgb, 16, 0, 0};
inline constexpr PictureFormat grey8{media::ColourModel::grey, 8, 0, 0};

inline int sample(const Picture &picture, int plane, int x, int y) {
    const std::uint8_t *row = picture.planes[plane].data + y * picture.planes[plane].stride;
    return picture.format.depth > 8 ? reinterpret_cast<const std::uint16_t *>(row)[x] : row[x];
}

/// Calls visit(plane, x, y) for each sample.
template <typename Visit> void eachSample(const Picture &picture, const Visit &visit) {
    for (int plane = 0; plane < picture.format.planeCount(); ++plane)
        for (int y = 0; y < picture.planeHeight(plane); ++y)
            for (int x = 0; x < picture.planeWidth(plane); ++x)
                visit(plane, x, y);
}

/// A picture whose samples are value(plane, x, y).
template <typename Value>
Picture drawn(int width, int height, PictureFormat format, const Value &value, media::ColourTags colour = {}) {
    Picture picture = media::makePicture(width, height, format, colour);
    eachSample(picture, [&](int plane, int x, int y) {
        std::uint8_t *row = picture.planes[plane].data + y * picture.planes[plane].stride;
        if (format.depth > 8)
            reinterpret_cast<std::uint16_t *>(row)[x] = static_cast<std::uint16_t>(value(plane, x, y));
        else
            row[x] = static_cast<std::uint8_t>(value(plane, x, y));
    });
    return picture;
}

inline Picture noise(int width, int height, PictureFormat format, unsigned seed = 7) {
    std::mt19937 random(seed);
    const unsigned values = 1U << format.depth;
    return drawn(width, height, format, [&](int, int, int) { return static_cast<int>(random() % values); });
}

inline Picture flat(int width, int height, PictureFormat format, int luma, int chroma = 128,
                    media::ColourTags colour = {}) {
    return drawn(
        width, height, format, [&](int plane, int, int) { return plane == 0 ? luma : chroma; }, colour);
}

inline Picture black(int width, int height, PictureFormat format = media::yuv420, media::ColourTags colour = {}) {
    Picture canvas = media::makePicture(width, height, format, colour);
    media::Compositor::fillBlack(canvas);
    return canvas;
}

inline Rect all(const Picture &picture) {
    return {0, 0, static_cast<double>(picture.width), static_cast<double>(picture.height)};
}

inline media::ColourTags tagged(media::ColourRange range,
                                media::ChromaLocation location = media::ChromaLocation::unspecified) {
    return {2, 2, 2, range, location};
}

} // namespace lumetwin::test
