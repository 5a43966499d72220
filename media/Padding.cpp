// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/Padding.h"

#include <algorithm>

namespace lumetwin::media {

int codedSize(int size, int smallest) {
    return std::max(size + (size & 1), smallest);
}

Picture padded(const Picture &picture, int width, int height, PicturePool &pool) {
    if (picture.width == width && picture.height == height)
        return picture;
    Picture larger = pool.take();
    larger.colour = picture.colour;
    copyExtended(picture, larger);
    return larger;
}

} // namespace lumetwin::media
