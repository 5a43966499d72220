// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/VideoDecoder.h"

#include "media/DecodingThreads.h"
#include "media/Processors.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <algorithm>
#include <utility>

namespace lumetwin::media::ffmpeg {

namespace {

/// Each thread more costs a little of what all of them do, and most processors are busy coding the frames again.
int decodingThreads() {
    if (decodesWithOneThread())
        return 1;
    constexpr int most = 16; // each holds two frames or more
    return std::clamp(processors() / 2, 1, most);
}

} // namespace

VideoDecoder::VideoDecoder(std::filesystem::path file, const AVStream &stream)
    : file_(std::move(file)), codec_(makeDecoder(file_, stream)) {
    codec_->thread_count = decodingThreads();
    codec_->max_pixels = largestFrame;
}

bool VideoDecoder::askForBothViews() {
    if (codec_->codec_id != AV_CODEC_ID_HEVC)
        return false;
    check(av_opt_set(codec_->priv_data, "view_ids", "-1", 0), file_, MediaOperation::decode);
    return true;
}

void VideoDecoder::useThreads(int threads, Sharing sharing) {
    codec_->thread_count = decodesWithOneThread() ? 1 : threads;
    codec_->thread_type = FF_THREAD_SLICE | (sharing == Sharing::frames ? FF_THREAD_FRAME : 0);
}

std::span<const std::uint8_t> VideoDecoder::configuration() const {
    return {codec_->extradata, static_cast<std::size_t>(codec_->extradata_size)};
}

void VideoDecoder::open() {
    check(avcodec_open2(codec_.get(), codec_->codec, nullptr), file_, MediaOperation::decode);
}

void VideoDecoder::leaveOutUnreferenced(bool leaveOut) {
    codec_->skip_frame = leaveOut ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
}

bool VideoDecoder::decode(const AVPacket *packet, const Sink &sink) {
    for (;;) {
        const int code = avcodec_send_packet(codec_.get(), packet);
        if (!receive(sink))
            return false;
        if (code == AVERROR(EAGAIN))
            continue;
        if (code == AVERROR(ENOMEM))
            throw error(file_, MediaOperation::decode, code);
        if (code < 0 && code != AVERROR_EOF)
            damaged_ = true; // this packet's frames are lost, the next ones may be whole
        return true;
    }
}

bool VideoDecoder::receive(const Sink &sink) {
    for (;;) {
        FramePointer frame = makeFrame();
        const int code = avcodec_receive_frame(codec_.get(), frame.get());
        if (code == AVERROR(EAGAIN) || code == AVERROR_EOF)
            return true;
        if (code == AVERROR(ENOMEM))
            throw error(file_, MediaOperation::decode, code);
        if (code < 0) {
            damaged_ = true;
            return true;
        }
        if ((frame->flags & AV_FRAME_FLAG_CORRUPT) || frame->decode_error_flags)
            damaged_ = true;
        if (!sink(std::move(frame)))
            return false;
    }
}

} // namespace lumetwin::media::ffmpeg
