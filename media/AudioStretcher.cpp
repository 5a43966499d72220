// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/AudioStretcher.h"

#include "media/SpeedChanger.h"
#include "media/ffmpeg/ResamplingChanger.h"
#include "media/rubberband/PitchKeepingChanger.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace lumetwin::media {

namespace {

constexpr double inaudiblePitch = 0.002;
constexpr double largestRatio = 8;
constexpr float fullScale = 32768;

std::unique_ptr<SpeedChanger> makeChanger(int sampleRate, int channels, double ratio) {
    if (!(ratio >= 1 / largestRatio && ratio <= largestRatio))
        throw std::invalid_argument("the sound would be stretched out of all proportion");
    // The small addition makes 0.2 % itself count as resampled, despite rounding of doubles.
    if (std::abs(ratio - 1) <= inaudiblePitch + 1e-9)
        return makeResamplingChanger(channels, ratio);
    return makePitchKeepingChanger(sampleRate, channels, ratio);
}

std::int16_t sample(float value) {
    const float scaled = std::round(value * fullScale);
    return static_cast<std::int16_t>(std::clamp(scaled, -fullScale, fullScale - 1));
}

} // namespace

struct AudioStretcher::State {
    std::size_t channels;
    double ratio;
    std::unique_ptr<SpeedChanger> changer;
    std::int64_t taken = 0;
    std::int64_t given = 0;

    /// The number of samples that all blocks together should have by now.
    std::int64_t due() const { return std::llround(static_cast<double>(taken) * ratio); }

    Channels planes(const AudioBlock &block) const {
        const auto count = static_cast<std::size_t>(block.count);
        Channels result(channels, std::vector<float>(count));
        for (std::size_t channel = 0; channel < channels; ++channel)
            for (std::size_t index = 0; index < count; ++index)
                result[channel][index] = static_cast<float>(block.samples[index * channels + channel]) / fullScale;
        return result;
    }

    /// At most `most` of the samples that are ready.
    AudioBlock interleaved(const Channels &ready, std::int64_t most) {
        const auto length = static_cast<std::int64_t>(ready.front().size());
        const auto count = static_cast<std::size_t>(std::clamp<std::int64_t>(most, 0, length));
        auto samples = std::make_shared<std::int16_t[]>(count * channels);
        for (std::size_t index = 0; index < count; ++index)
            for (std::size_t channel = 0; channel < channels; ++channel)
                samples[index * channels + channel] = sample(ready[channel][index]);
        given += static_cast<std::int64_t>(count);
        return {std::move(samples), static_cast<int>(count)};
    }
};

AudioStretcher::AudioStretcher(int sampleRate, int channels, double ratio)
    : state_(std::make_unique<State>(
          State{static_cast<std::size_t>(channels), ratio, makeChanger(sampleRate, channels, ratio)})) {}

AudioStretcher::~AudioStretcher() = default;

AudioBlock AudioStretcher::stretch(const AudioBlock &block) {
    state_->taken += block.count;
    Channels ready(state_->channels);
    state_->changer->change(state_->planes(block), ready);
    return state_->interleaved(ready, std::numeric_limits<int>::max());
}

AudioBlock AudioStretcher::finish() {
    Channels ready(state_->channels);
    state_->changer->finish(ready);
    const std::int64_t missing = state_->due() - state_->given;
    for (std::vector<float> &channel : ready)
        if (missing > static_cast<std::int64_t>(channel.size()))
            channel.resize(static_cast<std::size_t>(missing)); // the end is filled with silence
    return state_->interleaved(ready, missing);
}

} // namespace lumetwin::media
