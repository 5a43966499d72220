// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieWriter.h"
#include "media/ffmpeg/Ffmpeg.h"

#include <filesystem>
#include <functional>
#include <memory>

namespace lumetwin::media::ffmpeg {

/// Receives encoded packets in coding order, times in the track's own units.
using PacketSink = std::function<void(AVPacket &)>;

/// Turns pictures into a track's packets. Used by one thread at a time.
class VideoTrackEncoder {
public:
    virtual ~VideoTrackEncoder() = default;
    /// Fills in what the muxer has to know about the track before its header is written.
    virtual void describe(AVStream &stream) = 0;
    /// `right` is null for ordinary video.
    virtual void encode(const Picture &left, const Picture *right, std::int64_t time, std::int64_t duration,
                        const PacketSink &sink) = 0;
    /// Gives out what is still under way.
    virtual void finish(const PacketSink &sink) = 0;
};

} // namespace lumetwin::media::ffmpeg
