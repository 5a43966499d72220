// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/AudioStretcher.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <stdexcept>
#include <vector>

namespace lumetwin::media {
namespace {

constexpr int rate = 48000;
using Samples = std::vector<std::int16_t>;

/// A tone of the given frequency, the second channel half as loud.
Samples tone(double frequency, int count, int channels) {
    Samples samples;
    for (int index = 0; index < count; ++index)
        for (int channel = 0; channel < channels; ++channel)
            samples.push_back(static_cast<std::int16_t>(20000 / (channel + 1) *
                                                        std::sin(2 * std::numbers::pi * frequency * index / rate)));
    return samples;
}

Samples stretched(const Samples &samples, int channels, double ratio, int step) {
    AudioStretcher stretcher(rate, channels, ratio);
    Samples result;
    const auto take = [&](const AudioBlock &block) {
        result.insert(result.end(), block.samples.get(), block.samples.get() + block.count * channels);
    };
    const int count = static_cast<int>(samples.size()) / channels;
    for (int at = 0; at < count; at += step) {
        const int length = std::min(step, count - at);
        auto part = std::make_shared<std::int16_t[]>(static_cast<std::size_t>(length) * channels);
        std::copy_n(samples.begin() + std::ptrdiff_t{at} * channels, length * channels, part.get());
        take(stretcher.stretch({part, length}));
    }
    take(stretcher.finish());
    return result;
}

/// Crossings of zero from below, a second, in the middle half of a channel.
double frequencyOf(const Samples &samples, int channels) {
    const std::size_t count = samples.size() / static_cast<std::size_t>(channels);
    int crossings = 0;
    for (std::size_t index = count / 4; index + 1 < count * 3 / 4; ++index)
        crossings += samples[index * channels] < 0 && samples[(index + 1) * channels] >= 0;
    return crossings * static_cast<double>(rate) / (static_cast<double>(count) / 2);
}

TEST(AudioStretcher, IsExactlyAsLongAsAsked) {
    for (const double ratio : {1.001, 0.999, 1.002, 1.0025, 0.96, 10.0 / 9, 0.5, 2.0, 1 + 1e-6})
        for (const int channels : {1, 2})
            for (const int count : {0, 1, 1000, 100003}) {
                const Samples result = stretched(tone(440, count, channels), channels, ratio, 1024);
                EXPECT_EQ(static_cast<long>(result.size()) / channels, std::lround(count * ratio))
                    << ratio << " " << channels << " " << count;
            }
}

TEST(AudioStretcher, KeepsThePitchBeyondTwoThousandths) {
    for (const double ratio : {1.003, 0.96, 10.0 / 9, 1.3})
        EXPECT_NEAR(frequencyOf(stretched(tone(440, 4 * rate, 2), 2, ratio, 1000), 2), 440, 0.5) << ratio;
}

TEST(AudioStretcher, LetsThePitchMoveByLess) {
    const double frequency = frequencyOf(stretched(tone(1000, 10 * rate, 1), 1, 1.002, 4096), 1);
    EXPECT_NEAR(frequency, 1000 / 1.002, 0.4);
}

TEST(AudioStretcher, KeepsLoudnessAndChannels) {
    for (const double ratio : {1.001, 0.96}) {
        const Samples result = stretched(tone(440, 2 * rate, 2), 2, ratio, 1024);
        double left = 0;
        double right = 0;
        for (std::size_t index = result.size() / 4; index + 1 < result.size() * 3 / 4; index += 2) {
            left = std::max(left, std::abs(static_cast<double>(result[index & ~std::size_t{1}])));
            right = std::max(right, std::abs(static_cast<double>(result[(index & ~std::size_t{1}) + 1])));
        }
        EXPECT_NEAR(left, 20000, 2000) << ratio;
        EXPECT_NEAR(right, 10000, 1000) << ratio;
    }
}

TEST(AudioStretcher, DoesNotDependOnHowItIsHandedOver) {
    const Samples source = tone(700, rate, 1);
    EXPECT_EQ(stretched(source, 1, 1.001, 1), stretched(source, 1, 1.001, 5000));
}

TEST(AudioStretcher, RefusesWhatIsOutOfProportion) {
    EXPECT_THROW(AudioStretcher(rate, 2, 0), std::invalid_argument);
    EXPECT_THROW(AudioStretcher(rate, 2, 9), std::invalid_argument);
    EXPECT_THROW(AudioStretcher(rate, 2, std::nan("")), std::invalid_argument);
}

} // namespace
} // namespace lumetwin::media
