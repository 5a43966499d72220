// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/FrameReader.h"
#include "media/MovieFile.h"

#include <functional>
#include <optional>

namespace lumetwin {

/// The video stream of the second eye, when each eye has a stream of its own. Its pictures are found by their times,
/// counted from the first picture of each stream; without times, by their order.
class PartnerStream {
public:
    /// Throws MediaError, and ProcessorError when there is no such stream or its pictures have another size than those
    /// of `first`.
    PartnerStream(const media::InputFile &file, media::VideoStream stream, const media::VideoTrack &first,
                  const std::function<bool()> &cancelled);

    /// The picture that belongs to a frame of the first stream; nullopt when there is none. Frames are asked for in
    /// their order.
    std::optional<media::Picture> pictureFor(const media::Frame &frame);

    bool damaged() const { return reader_.damaged(); }

private:
    static double secondsOf(const media::Frame &frame, const media::VideoTrack &track);

    media::MovieFile movie_;
    media::VideoTrack track_;
    media::VideoTrack first_;
    media::FrameReader reader_;
    std::optional<media::Frame> next_; ///< read, and not used yet
};

} // namespace lumetwin
