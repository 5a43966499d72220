// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/stereo/StereoMetadata.h"
#include "media/SpatialPhoto.h"

namespace lumetwin {

/// The camera and disparity values of a spatial photo whose left eye has the given size. The principal point is twice
/// the width and height, as in all files of this format. A field of view of 0 gives an infinite focal length. A
/// disparity that overflows 64 bits ends the program.
media::SpatialPhotoFacts spatialPhotoFacts(const StereoMetadata &values, std::int64_t width, std::int64_t height);

} // namespace lumetwin
