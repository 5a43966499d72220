// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/ffmpeg/TrackEncoder.h"

namespace lumetwin::media::ffmpeg {

/// Cuts interleaved 16-bit samples into frames and codes them as AAC. Times are in samples; the encoder's priming lies
/// before 0, where the muxer's edit list cuts it off.
class AudioEncoder {
public:
    AudioEncoder(const std::filesystem::path &file, const AudioEncoding &encoding);
    void describe(AVStream &stream);
    void encode(const AudioBlock &block, const PacketSink &sink);
    void finish(const PacketSink &sink);
    /// Samples a channel taken so far.
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
