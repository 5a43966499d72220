// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieWriter.h"
#include "media/ffmpeg/Ffmpeg.h"

#include <filesystem>
#include <functional>
#include <memory>

namespace lumetwin::media::ffmpeg {

/// Receives encoded packets in coding order. Times are in the track's units.
using PacketSink = std::function<void(AVPacket &)>;

/// Encodes pictures into packets of a track. May be used by one thread at a time.
class VideoTrackEncoder {
public:
    virtual ~VideoTrackEncoder() = default;
    /// Sets the stream parameters that the muxer needs before it writes the header.
    virtual void describe(AVStream &stream) = 0;
    /// `right` is null for ordinary video.
    virtual void encode(const Picture &left, const Picture *right, std::int64_t time, std::int64_t duration,
                        const PacketSink &sink) = 0;
    /// Encodes the remaining pictures.
    virtual void finish(const PacketSink &sink) = 0;
};

} // namespace lumetwin::media::ffmpeg
