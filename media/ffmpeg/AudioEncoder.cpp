// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/AudioEncoder.h"

#include <algorithm>
#include <new>

namespace lumetwin::media::ffmpeg {

namespace {

constexpr MediaOperation soundOperation = MediaOperation::encodeSound;
constexpr float fullScale = 1.0F / 32768.0F;

} // namespace

AudioEncoder::AudioEncoder(const std::filesystem::path &file, const AudioEncoding &encoding) : file_(file) {
    const AVCodec *aac = avcodec_find_encoder(AV_CODEC_ID_AAC);
    codec_.reset(avcodec_alloc_context3(aac));
    if (!codec_)
        throw std::bad_alloc();
    codec_->sample_rate = encoding.sampleRate;
    codec_->sample_fmt = AV_SAMPLE_FMT_FLTP;
    codec_->bit_rate = encoding.bitRate;
    codec_->time_base = {1, encoding.sampleRate};
    codec_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    av_channel_layout_default(&codec_->ch_layout, encoding.channels);
    check(avcodec_open2(codec_.get(), aac, nullptr), file_, soundOperation);
}

void AudioEncoder::describe(AVStream &stream) {
    check(avcodec_parameters_from_context(stream.codecpar, codec_.get()), file_, soundOperation);
}

void AudioEncoder::encode(const AudioBlock &block, const PacketSink &sink) {
    int done = 0;
    while (done < block.count) {
        const int count = std::min(block.count - done, codec_->frame_size - filled_);
        append(block.samples.get() + static_cast<std::ptrdiff_t>(done) * codec_->ch_layout.nb_channels, count);
        done += count;
        if (filled_ == codec_->frame_size)
            send(sink);
    }
    taken_ += block.count;
}

void AudioEncoder::append(const std::int16_t *samples, int count) {
    const int channels = codec_->ch_layout.nb_channels;
    if (!frame_) {
        frame_ = makeFrame();
        frame_->format = codec_->sample_fmt;
        frame_->sample_rate = codec_->sample_rate;
        frame_->nb_samples = codec_->frame_size;
        if (av_channel_layout_copy(&frame_->ch_layout, &codec_->ch_layout) < 0 ||
            av_frame_get_buffer(frame_.get(), 0) < 0)
            throw std::bad_alloc();
    }
    for (int channel = 0; channel < channels; ++channel) {
        float *target = reinterpret_cast<float *>(frame_->extended_data[channel]) + filled_;
        for (int index = 0; index < count; ++index)
            target[index] = static_cast<float>(samples[index * channels + channel]) * fullScale;
    }
    filled_ += count;
}

void AudioEncoder::send(const PacketSink &sink) {
    frame_->nb_samples = filled_;
    frame_->pts = sent_;
    sent_ += filled_;
    filled_ = 0;
    check(avcodec_send_frame(codec_.get(), frame_.get()), file_, soundOperation);
    frame_.reset(); // the encoder may keep a reference
    receive(sink);
}

void AudioEncoder::finish(const PacketSink &sink) {
    if (filled_ > 0)
        send(sink);
    check(avcodec_send_frame(codec_.get(), nullptr), file_, soundOperation);
    receive(sink);
}

void AudioEncoder::receive(const PacketSink &sink) {
    for (;;) {
        const int code = avcodec_receive_packet(codec_.get(), packet_.get());
        if (code == AVERROR(EAGAIN) || code == AVERROR_EOF)
            return;
        check(code, file_, soundOperation);
        sink(*packet_);
        av_packet_unref(packet_.get());
    }
}

} // namespace lumetwin::media::ffmpeg
