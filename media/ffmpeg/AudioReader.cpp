// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/AudioReader.h"
#include "media/MovieFile.h"
#include "media/ffmpeg/Input.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace lumetwin::media {

namespace {

using ffmpeg::check;

// Smaller differences between time stamps and the number of samples are rounding, not gaps.
constexpr double gapTolerance = 0.1; // seconds
// A longer gap means wrong time stamps; it is ignored.
constexpr double longestGap = 600;  // seconds
constexpr double latestTime = 1e12; // seconds; up to this, samples can be counted exactly
constexpr int silenceBlock = 4096;  // samples per channel

constexpr std::array<int, 12> aacRates{8000,  11025, 12000, 16000, 22050, 24000,
                                       32000, 44100, 48000, 64000, 88200, 96000};

} // namespace

int aacSampleRate(double sourceRate) {
    const auto rate = std::lower_bound(aacRates.begin(), aacRates.end(), static_cast<int>(std::lround(sourceRate)));
    return rate == aacRates.end() ? aacRates.back() : *rate;
}

struct AudioReader::State {
    std::filesystem::path file;
    int stream;
    int sampleRate;
    int channels;
    double fromTime;
    ffmpeg::Input input;
    ffmpeg::Codec decoder;
    ffmpeg::Resampler resampler;
    AVChannelLayout sourceLayout{};
    int sourceRate = 0;
    AVSampleFormat sourceFormat = AV_SAMPLE_FMT_NONE;
    ffmpeg::Packet packet = ffmpeg::makePacket();
    ffmpeg::FramePointer frame = ffmpeg::makeFrame();
    std::int64_t produced = 0; ///< samples per channel returned or waiting
    std::int64_t silence = 0;  ///< samples per channel of silence to return next
    AudioBlock waiting;        ///< the block after the silence
    bool packetsOver = false;
    bool over = false;

    State(const InputFile &source, const AudioTrack &track, int rate, int channelCount, double from)
        : file(source.path()), stream(track.index), sampleRate(rate), channels(channelCount), fromTime(from),
          input(source), decoder(ffmpeg::makeDecoder(file, *input->streams[track.index])) {
        for (unsigned index = 0; index < input->nb_streams; ++index)
            if (static_cast<int>(index) != stream)
                input->streams[index]->discard = AVDISCARD_ALL;
        check(avcodec_open2(decoder.get(), decoder->codec, nullptr), file, MediaOperation::decodeSound);
        sendPacket();
    }

    ~State() { av_channel_layout_uninit(&sourceLayout); }

    std::optional<AudioBlock> next() {
        while (silence == 0 && waiting.count == 0) {
            if (over)
                return std::nullopt;
            if (!decodeFrame()) {
                over = true;
                drainResampler();
            }
        }
        return silence > 0 ? takeSilence() : std::exchange(waiting, {});
    }

    AudioBlock takeSilence() {
        const int count = static_cast<int>(std::min<std::int64_t>(silence, silenceBlock));
        silence -= count;
        return {std::make_shared<std::int16_t[]>(static_cast<std::size_t>(count) * channels), count};
    }

    /// Decodes one frame into `waiting`, which may stay empty. Returns false at the end.
    bool decodeFrame() {
        const int code = avcodec_receive_frame(decoder.get(), frame.get());
        if (code == AVERROR_EOF)
            return false;
        if (code == AVERROR(EAGAIN)) {
            sendPacket();
            return true;
        }
        if (code >= 0)
            convert();
        return true; // a damaged frame is a gap
    }

    void sendPacket() {
        while (!packetsOver) {
            av_packet_unref(packet.get());
            if (av_read_frame(input.get(), packet.get()) < 0)
                break;
            if (packet->stream_index != stream)
                continue;
            // Decoding encrypted data would give noise.
            if (ffmpeg::isEncrypted(*packet))
                throw MediaError(file, MediaOperation::decodeSound, AVERROR(EACCES), MediaReason::encrypted);
            avcodec_send_packet(decoder.get(), packet.get());
            return;
        }
        packetsOver = true;
        avcodec_send_packet(decoder.get(), nullptr);
    }

    void convert() {
        if (frame->nb_samples < 1 || frame->sample_rate < 1 || frame->ch_layout.nb_channels < 1)
            return;
        ensureResampler();
        const std::int64_t room = swr_get_out_samples(resampler.get(), frame->nb_samples);
        const auto **data = const_cast<const std::uint8_t **>(frame->extended_data);
        AudioBlock block = resample(static_cast<int>(room), data, frame->nb_samples);
        place(std::move(block), endOfFrame()); // depends on the samples that are still in the resampler
        av_frame_unref(frame.get());
    }

    void drainResampler() {
        if (resampler)
            place(resample(static_cast<int>(swr_get_out_samples(resampler.get(), 0)), nullptr, 0), std::nullopt);
    }

    AudioBlock resample(int room, const std::uint8_t **data, int count) {
        if (room < 1)
            return {};
        auto samples = std::make_shared<std::int16_t[]>(static_cast<std::size_t>(room) * channels);
        std::uint8_t *out = reinterpret_cast<std::uint8_t *>(samples.get());
        const int produced16 = swr_convert(resampler.get(), &out, room, data, count);
        return {std::move(samples), std::max(produced16, 0)};
    }

    /// The output position of the frame's end, in samples; nullopt without a plausible time stamp.
    std::optional<std::int64_t> endOfFrame() const {
        if (frame->pts == AV_NOPTS_VALUE)
            return std::nullopt;
        const double time = static_cast<double>(frame->pts) * av_q2d(input->streams[stream]->time_base) - fromTime;
        const double delay = static_cast<double>(swr_get_delay(resampler.get(), 1000000)) / 1e6;
        // Samples still in the resampler are subtracted, so this is where the resampler's output ends.
        const double end = time + static_cast<double>(frame->nb_samples) / frame->sample_rate - delay;
        return std::abs(end) < latestTime ? std::optional(std::llround(end * sampleRate)) : std::nullopt;
    }

    /// Places a block on the time line. `end`: its end, if known.
    void place(AudioBlock block, std::optional<std::int64_t> end) {
        if (block.count == 0)
            return;
        const std::int64_t position = produced;
        if (end) {
            const std::int64_t start = *end - block.count;
            const std::int64_t gap = start - position;
            const auto tolerance = position == 0 ? 0 : static_cast<std::int64_t>(gapTolerance * sampleRate);
            const auto longest = static_cast<std::int64_t>(longestGap * sampleRate);
            if (gap > tolerance && gap <= longest)
                silence += gap;
            else if (gap < -tolerance && gap >= -longest)
                dropFront(block, static_cast<int>(std::min<std::int64_t>(-gap, block.count)));
        }
        produced += silence + block.count;
        waiting = std::move(block);
    }

    void dropFront(AudioBlock &block, int count) const {
        const std::ptrdiff_t samples = std::ptrdiff_t{count} * channels;
        block.samples = std::shared_ptr<const std::int16_t[]>(block.samples, block.samples.get() + samples);
        block.count -= count;
    }

    /// A source may change its format; the output format stays the same.
    void ensureResampler() {
        if (resampler && frame->sample_rate == sourceRate && frame->format == sourceFormat &&
            av_channel_layout_compare(&frame->ch_layout, &sourceLayout) == 0)
            return;
        sourceRate = frame->sample_rate;
        sourceFormat = static_cast<AVSampleFormat>(frame->format);
        check(av_channel_layout_copy(&sourceLayout, &frame->ch_layout), file, MediaOperation::decodeSound);
        AVChannelLayout from = frame->ch_layout;
        if (from.order == AV_CHANNEL_ORDER_UNSPEC)
            av_channel_layout_default(&from, frame->ch_layout.nb_channels);
        AVChannelLayout to{};
        av_channel_layout_default(&to, channels);
        SwrContext *context = resampler.release();
        const int code = swr_alloc_set_opts2(&context, &to, AV_SAMPLE_FMT_S16, sampleRate, &from, sourceFormat,
                                             sourceRate, 0, nullptr);
        resampler.reset(context);
        check(code, file, MediaOperation::decodeSound);
        check(swr_init(resampler.get()), file, MediaOperation::decodeSound);
    }
};

AudioReader::AudioReader(const InputFile &file, const AudioTrack &track, int sampleRate, int channels, double fromTime)
    : state_(std::make_unique<State>(file, track, sampleRate, channels, fromTime)) {}

AudioReader::~AudioReader() = default;

std::optional<AudioBlock> AudioReader::next() {
    return state_->next();
}

} // namespace lumetwin::media
