// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieFile.h"

#include <cstdint>

namespace lumetwin {

/// The basic facts from which the converters compute the size and the progress of their output.
struct VideoInfo {
    media::VideoTrack track;
    std::int64_t width = 0; ///< natural width, rounded down; rotation is not applied
    std::int64_t height = 0;
    float fps = 0;       ///< nominal frame rate, 0 when unknown
    double duration = 0; ///< seconds
};

/// The facts of a track, in a movie of that duration in seconds.
VideoInfo videoInfo(const media::VideoTrack &track, double duration);

/// The facts of a movie's first video track. Throws ProcessorError with "error.no.video.track" when there is none.
VideoInfo loadVideoInfo(const media::MovieFile &movie);

} // namespace lumetwin
