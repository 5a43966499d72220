// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/ffmpeg/TrackEncoder.h"

namespace lumetwin::media::ffmpeg {

/// Of a track of two views; `file` is named in errors.
std::unique_ptr<VideoTrackEncoder> makeVideoEncoder(const std::filesystem::path &file,
                                                    const StereoVideoEncoding &encoding, int timeScale);

} // namespace lumetwin::media::ffmpeg
