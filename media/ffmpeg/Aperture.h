// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/PixelAspect.h"
#include "media/ffmpeg/Ffmpeg.h"

namespace lumetwin::media::ffmpeg {

/// Tells the muxer to show only the given size of a larger coded picture (clean aperture, from the top left).
void setAperture(AVStream &stream, int width, int height);

/// Tells the muxer the shape of a pixel; square ones need no word.
void setPixelAspect(AVStream &stream, PixelAspect aspect);

} // namespace lumetwin::media::ffmpeg
