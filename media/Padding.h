// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"

namespace lumetwin::media {

/// The even size that a 4:2:0 encoder codes for a frame of the given size, at least `smallest` a side.
int codedSize(int size, int smallest);

/// The picture itself when it has the given size, else a copy, from a pool of that size, whose last column and row are
/// repeated up to it. 8-bit pictures only.
Picture padded(const Picture &picture, int width, int height, PicturePool &pool);

} // namespace lumetwin::media
