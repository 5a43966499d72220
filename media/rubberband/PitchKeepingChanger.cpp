// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/rubberband/PitchKeepingChanger.h"

#include <rubberband/RubberBandStretcher.h>

#include <algorithm>

namespace lumetwin::media {

namespace {

using RubberBand::RubberBandStretcher;

// The number of samples passed at once; the library allocates for this number.
constexpr std::size_t largestStep = 4096;

/// Uses the library's finer engine. The faster one changes steady tones by up to 1 % when it must keep transients
/// sharp.
class PitchKeepingChanger : public SpeedChanger {
public:
    PitchKeepingChanger(int sampleRate, int channels, double ratio)
        : channels_(static_cast<std::size_t>(channels)),
          stretcher_(static_cast<std::size_t>(sampleRate), channels_,
                     RubberBandStretcher::OptionProcessRealTime | RubberBandStretcher::OptionEngineFiner |
                         RubberBandStretcher::OptionChannelsTogether,
                     ratio) {
        stretcher_.setMaxProcessSize(largestStep);
        toDrop_ = stretcher_.getStartDelay();
        const std::size_t pad = stretcher_.getPreferredStartPad();
        Channels ignored(channels_);
        process(Channels(channels_, std::vector<float>(pad)), false, ignored);
        beginning_ = std::move(ignored);
    }

    void change(const Channels &samples, Channels &ready) override {
        takeBeginning(ready);
        process(samples, false, ready);
    }

    void finish(Channels &ready) override {
        takeBeginning(ready);
        process(Channels(channels_, std::vector<float>(1)), true, ready);
    }

private:
    /// Takes the output of the padding before the first sample, without the delay.
    void takeBeginning(Channels &ready) {
        for (std::size_t channel = 0; channel < beginning_.size(); ++channel)
            ready[channel].insert(ready[channel].begin(), beginning_[channel].begin(), beginning_[channel].end());
        beginning_.clear();
    }

    void process(const Channels &samples, bool isLast, Channels &ready) {
        const std::size_t count = samples.front().size();
        for (std::size_t done = 0; done < count;) {
            const std::size_t step = std::min(count - done, largestStep);
            std::vector<const float *> input;
            for (const std::vector<float> &channel : samples)
                input.push_back(channel.data() + done);
            done += step;
            stretcher_.process(input.data(), step, isLast && done == count);
            retrieve(ready);
        }
    }

    void retrieve(Channels &ready) {
        for (int available = stretcher_.available(); available > 0; available = stretcher_.available()) {
            Channels taken(channels_, std::vector<float>(static_cast<std::size_t>(available)));
            std::vector<float *> output;
            for (std::vector<float> &channel : taken)
                output.push_back(channel.data());
            const std::size_t count = stretcher_.retrieve(output.data(), static_cast<std::size_t>(available));
            const std::size_t dropped = std::min(toDrop_, count);
            toDrop_ -= dropped;
            for (std::size_t channel = 0; channel < channels_; ++channel)
                ready[channel].insert(ready[channel].end(), output[channel] + dropped, output[channel] + count);
        }
    }

    std::size_t channels_;
    RubberBandStretcher stretcher_;
    std::size_t toDrop_ = 0; ///< samples of the library's delay
    Channels beginning_;
};

} // namespace

std::unique_ptr<SpeedChanger> makePitchKeepingChanger(int sampleRate, int channels, double ratio) {
    return std::make_unique<PitchKeepingChanger>(sampleRate, channels, ratio);
}

} // namespace lumetwin::media
