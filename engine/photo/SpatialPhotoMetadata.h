// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/SpatialPhoto.h"
#include "model/ConversionSettings.h"

namespace lumetwin {

/// The camera and disparity values of a spatial photo whose left eye has the given size. The principal point is twice
/// the width and height: that is the agreed form of these files. A field of view of 0 gives an infinite focal length; a
/// disparity beyond 64 bits stops the program.
media::SpatialPhotoFacts spatialPhotoFacts(const ConversionSettings &settings, std::int64_t width, std::int64_t height);

} // namespace lumetwin
