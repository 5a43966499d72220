// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/PartnerStream.h"

#include "engine/texts/ProcessorError.h"

#include <cstdint>

namespace lumetwin {

namespace {

media::VideoTrack trackOf(const media::MovieFile &movie, media::VideoStream stream, const media::VideoTrack &first) {
    const std::optional<media::VideoTrack> track = movie.videoTrack();
    if (!track)
        throw ProcessorError(
            words(stream == media::VideoStream::second ? "error.no.second.stream" : "error.no.video.track"));
    if (track->naturalWidth != first.naturalWidth || track->naturalHeight != first.naturalHeight) {
        const auto whole = [](double length) { return static_cast<std::int64_t>(length); };
        throw ProcessorError(words("error.eye.sizes.differ.format", whole(first.naturalWidth),
                                   whole(first.naturalHeight), whole(track->naturalWidth),
                                   whole(track->naturalHeight)));
    }
    return *track;
}

} // namespace

PartnerStream::PartnerStream(const media::InputFile &file, media::VideoStream stream, const media::VideoTrack &first,
                             const std::function<bool()> &cancelled)
    : movie_(file, cancelled, stream), track_(trackOf(movie_, stream, first)), first_(first),
      reader_(movie_, track_, media::Views::base), next_(reader_.next()) {}

double PartnerStream::secondsOf(const media::Frame &frame, const media::VideoTrack &track) {
    return static_cast<double>(*frame.time) * track.tick.value() - track.startTime;
}

std::optional<media::Picture> PartnerStream::pictureFor(const media::Frame &frame) {
    const double tolerance = first_.pace.frameDuration / 2;
    while (next_) {
        const bool timed = frame.time && next_->time && tolerance > 0;
        const double ahead = timed ? secondsOf(*next_, track_) - secondsOf(frame, first_) : 0;
        if (ahead > tolerance)
            return std::nullopt; // the picture for this frame is missing
        media::Picture picture = next_->pictures[0].picture;
        next_ = reader_.next();
        if (ahead >= -tolerance)
            return picture;
    }
    return std::nullopt;
}

} // namespace lumetwin
