// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/Padding.h"

#include <algorithm>
#include <cstring>

namespace lumetwin::media {

int codedSize(int size, int smallest) { return std::max(size + (size & 1), smallest); }

namespace {

void padPlane(const Picture &from, Picture &to, int plane) {
    const int width = from.planeWidth(plane);
    const int height = from.planeHeight(plane);
    const int fullWidth = to.planeWidth(plane);
    for (int row = 0; row < to.planeHeight(plane); ++row) {
        const std::uint8_t *source = from.planes[plane].data + std::min(row, height - 1) * from.planes[plane].stride;
        std::uint8_t *target = to.planes[plane].data + row * to.planes[plane].stride;
        std::memcpy(target, source, static_cast<std::size_t>(width));
        std::memset(target + width, source[width - 1], static_cast<std::size_t>(fullWidth - width));
    }
}

} // namespace

Picture padded(const Picture &picture, int width, int height, PicturePool &pool) {
    if (picture.width == width && picture.height == height)
        return picture;
    Picture larger = pool.take();
    larger.colour = picture.colour;
    for (int plane = 0; plane < picture.format.planeCount(); ++plane)
        padPlane(picture, larger, plane);
    return larger;
}

} // namespace lumetwin::media
