// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/AudioBlock.h"

#include <cstdint>
#include <memory>

namespace lumetwin::media {

/// Makes sound longer or shorter by a factor near 1, so that it stays in sync with the pictures. Up to 0.2 % it
/// resamples, which changes the pitch by an inaudible amount. Above that it keeps the pitch.
class AudioStretcher {
public:
    /// `ratio`: output duration divided by source duration. Throws std::invalid_argument outside 1/8 to 8.
    AudioStretcher(int sampleRate, int channels, double ratio);
    ~AudioStretcher();

    /// Accepts the next block. Returns the samples that are ready, possibly none (count 0).
    AudioBlock stretch(const AudioBlock &block);
    /// Returns the remaining samples. All blocks together have (input samples × ratio), rounded to an integer.
    AudioBlock finish();

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace lumetwin::media
