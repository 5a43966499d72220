// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Cancellation.h"
#include "media/Picture.h"

namespace lumetwin::media {

/// The picture in another colour model, chroma subsampling, depth, matrix or range; primaries and transfer are not
/// changed. Tags that are unspecified mean BT.601 (matrix 6) and, for YUV, full range: what still images mean. Throws
/// std::logic_error for grey from colour, std::runtime_error when the library refuses, Cancelled when it is to stop.
Picture convertColour(const Picture &picture, PictureFormat format, const ColourTags &colour,
                      const Cancellation &cancellation = {});

} // namespace lumetwin::media
