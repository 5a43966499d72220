// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Inspection.h"
#include "engine/ProcessorError.h"
#include "engine/Texts.h"

namespace lumetwin {

VideoInfo loadVideoInfo(const media::MovieFile &movie) {
    const std::optional<media::VideoTrack> track = movie.videoTrack();
    if (!track)
        throw processorError(text("error.no.video.track"));
    VideoInfo info;
    info.track = *track;
    info.width = static_cast<std::int64_t>(track->naturalWidth);
    info.height = static_cast<std::int64_t>(track->naturalHeight);
    info.fps = track->nominalFrameRate;
    info.duration = movie.duration();
    return info;
}

} // namespace lumetwin
