// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/ffmpeg/TrackEncoder.h"

namespace lumetwin::media::ffmpeg {

/// Encodes interleaved 16-bit samples as AAC frames. Times are in samples. The encoder's priming is before time 0 and
/// is cut off by the muxer's edit list.
class AudioEncoder {
public:
    AudioEncoder(const std::filesystem::path &file, const AudioEncoding &encoding);
    void describe(AVStream &stream);
    void encode(const AudioBlock &block, const PacketSink &sink);
    void finish(const PacketSink &sink);
    /// The number of samples per channel so far.
    std::int64_t taken() const { return taken_; }

private:
    void append(const std::int16_t *samples, int count);
    void send(const PacketSink &sink);
    void receive(const PacketSink &sink);

    std::filesystem::path file_;
    Codec codec_;
    FramePointer frame_;
    Packet packet_ = makePacket();
    int filled_ = 0;
    std::int64_t sent_ = 0;
    std::int64_t taken_ = 0;
};

} // namespace lumetwin::media::ffmpeg
