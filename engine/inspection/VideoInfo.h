// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieFile.h"

#include <cstdint>

namespace lumetwin {

/// The basic facts that the converters size their output and progress by.
struct VideoInfo {
    media::VideoTrack track;
    std::int64_t width = 0; ///< natural width, truncated; no rotation applied
    std::int64_t height = 0;
    float fps = 0;       ///< nominal frame rate, 0 when unknown
    double duration = 0; ///< seconds
};

/// The facts of a track of a movie of that duration (seconds).
VideoInfo videoInfo(const media::VideoTrack &track, double duration);

/// Those of a movie's first video track. Throws ProcessorError with "error.no.video.track" when there is no video.
VideoInfo loadVideoInfo(const media::MovieFile &movie);

} // namespace lumetwin
