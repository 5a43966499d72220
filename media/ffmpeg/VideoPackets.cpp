// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/VideoPackets.h"

#include <utility>

namespace lumetwin::media::ffmpeg {

VideoPackets::VideoPackets(std::filesystem::path file, AVFormatContext &input, int stream)
    : file_(std::move(file)), input_(input), stream_(stream) {
    for (unsigned index = 0; index < input.nb_streams; ++index)
        if (static_cast<int>(index) != stream)
            input.streams[index]->discard = AVDISCARD_ALL;
}

void VideoPackets::guardViews(std::span<const std::uint8_t> configuration) {
    guard_.emplace(configuration);
    requireConsistency();
}

void VideoPackets::requireConsistency() const {
    if (!guard_->consistent())
        throw MediaError(file_, MediaOperation::decode, AVERROR_INVALIDDATA, MediaReason::contradictoryParameters);
}

const AVPacket *VideoPackets::next() {
    for (;;) {
        av_packet_unref(packet_.get());
        const int code = av_read_frame(&input_, packet_.get());
        if (code < 0) {
            // An index that lists more than there was tells of a file that ends early.
            if (code != AVERROR_EOF || count_ < avformat_index_get_entries_count(input_.streams[stream_]))
                damaged_ = true;
            return nullptr;
        }
        if (packet_->stream_index != stream_)
            continue;
        if (packet_->flags & AV_PKT_FLAG_CORRUPT)
            damaged_ = true;
        ++count_;
        // Whatever is in the clear at the beginning, a film without its rest serves nobody.
        if (isEncrypted(*packet_))
            throw MediaError(file_, MediaOperation::decode, AVERROR(EACCES), MediaReason::encryptedMovie);
        if (!guard_ || guardPacket())
            return packet_.get();
    }
}

/// Leaves in the packet what the decoder of two views survives; false when that is nothing.
bool VideoPackets::guardPacket() {
    std::size_t newSize = 0;
    if (const auto *changed = av_packet_get_side_data(packet_.get(), AV_PKT_DATA_NEW_EXTRADATA, &newSize)) {
        guard_->configure({changed, newSize});
        requireConsistency();
    }
    check(av_packet_make_writable(packet_.get()), file_, MediaOperation::decode);
    const auto size = static_cast<std::size_t>(packet_->size);
    const std::size_t kept = guard_->keep({packet_->data, size});
    if (guard_->damaged())
        damaged_ = true;
    if (kept < size)
        av_shrink_packet(packet_.get(), static_cast<int>(kept));
    return kept > 0;
}

} // namespace lumetwin::media::ffmpeg
