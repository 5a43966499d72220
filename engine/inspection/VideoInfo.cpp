// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/VideoInfo.h"
#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"

namespace lumetwin {

VideoInfo videoInfo(const media::VideoTrack &track, double duration) {
    VideoInfo info;
    info.track = track;
    info.width = static_cast<std::int64_t>(track.naturalWidth);
    info.height = static_cast<std::int64_t>(track.naturalHeight);
    info.fps = static_cast<float>(track.pace.rate.value());
    info.duration = duration;
    return info;
}

VideoInfo loadVideoInfo(const media::MovieFile &movie) {
    const std::optional<media::VideoTrack> track = movie.videoTrack();
    if (!track)
        throw processorError(text("error.no.video.track"));
    return videoInfo(*track, movie.duration());
}

} // namespace lumetwin
