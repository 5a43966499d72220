// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/ffmpeg/Ffmpeg.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>

namespace lumetwin::media::ffmpeg {

/// The largest frame in pixels, a little more than 8192 × 8192. A header that asks for more is not believed.
inline constexpr std::int64_t largestFrame = std::int64_t{1} << 27;

/// Turns a track's packets into decoded frames. Damaged ones are passed over.
class VideoDecoder {
public:
    /// Takes a decoded frame; false when no more are wanted.
    using Sink = std::function<bool(FramePointer)>;

    /// `file` is named in errors. Throws MediaError where there is no decoder for the track.
    VideoDecoder(std::filesystem::path file, const AVStream &stream);

    /// Both views of a multiview stream, each a frame of its own; before open(). False where the codec knows no views.
    bool askForBothViews();
    /// What threads share: the frames of a film where the codec allows that, which delays the first one, or only the
    /// parts of a frame.
    enum class Sharing { frames, partsOfFrames };
    /// Another number of threads than for a whole film; before open(). One after a crash in any case.
    void useThreads(int threads, Sharing sharing);
    /// Without the filter that smooths the edges of blocks; before open().
    void leaveOutLoopFilter() { codec_->skip_loop_filter = AVDISCARD_ALL; }
    /// The track's parameter sets and the like, as the container has them.
    std::span<const std::uint8_t> configuration() const;
    void open();

    /// From the next packet on, whether pictures that no other picture needs are left out.
    void leaveOutUnreferenced(bool leaveOut);
    /// Sends a packet (null: gives out what is under way). False once no more frames are wanted.
    bool decode(const AVPacket *packet, const Sink &sink);

    /// Whether data was damaged so far. Any thread.
    bool damaged() const { return damaged_; }

private:
    bool receive(const Sink &sink);

    std::filesystem::path file_;
    Codec codec_;
    std::atomic<bool> damaged_{false};
};

} // namespace lumetwin::media::ffmpeg
