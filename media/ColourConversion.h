// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Cancellation.h"
#include "media/Picture.h"

namespace lumetwin::media {

/// Converts the picture to another colour model, chroma subsampling, depth, matrix or range. Primaries and transfer are
/// not changed. Unspecified tags mean BT.601 (matrix 6) and, for YUV, full range, as in still images. Throws
/// std::logic_error for colour to grey, std::runtime_error when the library refuses, Cancelled when cancelled.
Picture convertColour(const Picture &picture, PictureFormat format, const ColourTags &colour,
                      const Cancellation &cancellation = {});

} // namespace lumetwin::media
