// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"

namespace lumetwin::media {

/// The even size in which a 4:2:0 encoder codes a frame of the given size, at least `smallest`.
int codedSize(int size, int smallest);

/// The picture itself if it has the given size; otherwise a copy from the pool that repeats its last column and row up
/// to that size.
Picture padded(const Picture &picture, int width, int height, PicturePool &pool);

} // namespace lumetwin::media
