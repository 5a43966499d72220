// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/LightLevels.h"
#include "media/ffmpeg/Ffmpeg.h"

namespace lumetwin::media::ffmpeg {

/// The light levels of a container's track, and those that a decoded frame came with.
LightLevels lightLevels(const AVCodecParameters &parameters);
LightLevels lightLevels(const AVFrame &frame);

/// Describes a track's light levels, for the boxes `mdcv` and `clli` (ISO/IEC 14496-12, 12.1.6 and 12.1.7).
void setLightLevels(AVCodecParameters &parameters, const LightLevels &levels);

} // namespace lumetwin::media::ffmpeg
