// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieWriter.h"

namespace lumetwin::media {

/// The most bits per sample that the encoder of spatial video codes: 10, or 8 where the x265 library has no ten-bit
/// part or cannot code two views with it. The library is asked once.
int deepestSpatialVideo();

/// The same for ordinary video. H.264 is always 8 bits, because few players decode more.
int deepestVideo(VideoCodec codec);

} // namespace lumetwin::media
