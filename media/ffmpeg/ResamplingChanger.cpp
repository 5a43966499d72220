// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/ResamplingChanger.h"

#include "media/ffmpeg/Ffmpeg.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

#include <algorithm>
#include <array>
#include <new>

namespace lumetwin::media {

namespace {

// Sound has one or two channels here.
constexpr std::size_t mostChannels = 2;
// A fraction with at most this denominator is exact to microseconds per hour.
constexpr int largestTerm = 20000;
constexpr int usualRate = 48000;

class ResamplingChanger : public SpeedChanger {
public:
    ResamplingChanger(int channels, double ratio) {
        // The library expects two integer rates, not a ratio. So use two rates with that ratio.
        const AVRational fraction = av_d2q(ratio, largestTerm);
        const int scale = std::max(1, usualRate / std::max(fraction.den, 1));
        AVChannelLayout layout{};
        av_channel_layout_default(&layout, channels);
        SwrContext *context = nullptr;
        const int code = swr_alloc_set_opts2(&context, &layout, AV_SAMPLE_FMT_FLTP, fraction.num * scale, &layout,
                                             AV_SAMPLE_FMT_FLTP, fraction.den * scale, 0, nullptr);
        resampler_.reset(context);
        if (code < 0 || swr_init(resampler_.get()) < 0)
            throw std::bad_alloc();
    }

    void change(const Channels &samples, Channels &ready) override {
        std::array<const std::uint8_t *, mostChannels> data{};
        for (std::size_t channel = 0; channel < samples.size(); ++channel)
            data[channel] = reinterpret_cast<const std::uint8_t *>(samples[channel].data());
        convert(data.data(), static_cast<int>(samples.front().size()), ready);
    }

    void finish(Channels &ready) override { convert(nullptr, 0, ready); }

private:
    void convert(const std::uint8_t *const *data, int count, Channels &ready) {
        const int room = std::max(swr_get_out_samples(resampler_.get(), count), 0);
        const std::size_t before = ready.front().size();
        std::array<std::uint8_t *, mostChannels> out{};
        for (std::size_t channel = 0; channel < ready.size(); ++channel) {
            ready[channel].resize(before + static_cast<std::size_t>(room));
            out[channel] = reinterpret_cast<std::uint8_t *>(ready[channel].data() + before);
        }
        const int made = room > 0 ? swr_convert(resampler_.get(), out.data(), room, data, count) : 0;
        for (std::vector<float> &channel : ready)
            channel.resize(before + static_cast<std::size_t>(std::max(made, 0)));
    }

    ffmpeg::Resampler resampler_;
};

} // namespace

std::unique_ptr<SpeedChanger> makeResamplingChanger(int channels, double ratio) {
    return std::make_unique<ResamplingChanger>(channels, ratio);
}

} // namespace lumetwin::media
