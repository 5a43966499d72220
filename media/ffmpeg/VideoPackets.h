// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/ffmpeg/AccessUnitGuard.h"
#include "media/ffmpeg/Ffmpeg.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace lumetwin::media::ffmpeg {

/// The packets of one video track in coding order, through a demuxer that has nothing else to do meanwhile.
class VideoPackets {
public:
    /// The demuxer outlives this; `file` is named in errors.
    VideoPackets(std::filesystem::path file, AVFormatContext &input, int stream);

    /// From now on, packets hold what a decoder of two views survives. `configuration` is the track's. Throws
    /// MediaError where parameter sets contradict each other.
    void guardViews(std::span<const std::uint8_t> configuration);

    /// The next one, until it is asked again; null at the end, also where the file ends early. Throws MediaError where
    /// it is encrypted.
    const AVPacket *next();

    /// Whether data was damaged or missing so far. Any thread.
    bool damaged() const { return damaged_; }

private:
    bool guardPacket();
    void requireConsistency() const;

    std::filesystem::path file_;
    AVFormatContext &input_;
    int stream_;
    Packet packet_ = makePacket();
    std::optional<AccessUnitGuard> guard_;
    std::int64_t count_ = 0;
    std::atomic<bool> damaged_{false};
};

} // namespace lumetwin::media::ffmpeg
