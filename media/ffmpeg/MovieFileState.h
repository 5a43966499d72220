// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieReader.h"
#include "media/ffmpeg/Ffmpeg.h"

namespace lumetwin::media {

struct MovieFile::State {
    std::filesystem::path path;
    ffmpeg::Input input;
};

} // namespace lumetwin::media

namespace lumetwin::media::ffmpeg {

/// What a sample entry's clean aperture (ISO/IEC 14496-12, 12.1.4) cuts off the coded picture, in pixels.
struct Cropping {
    int top = 0;
    int bottom = 0;
    int left = 0;
    int right = 0;
};

Cropping cropping(const AVCodecParameters &parameters);

} // namespace lumetwin::media::ffmpeg
