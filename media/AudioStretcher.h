// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/AudioBlock.h"

#include <cstdint>
#include <memory>

namespace lumetwin::media {

/// Makes sound longer or shorter by a factor near 1, so that it stays in step with pictures that do. Up to 0.2 % it is
/// resampled, which shifts its pitch by less than anybody hears; beyond, its pitch is kept.
class AudioStretcher {
public:
    /// `ratio` is the duration of the result ÷ that of the source. Throws std::invalid_argument outside 1/8 to 8.
    AudioStretcher(int sampleRate, int channels, double ratio);
    ~AudioStretcher();

    /// Takes the next block; gives out what is ready, which may be nothing (count 0).
    AudioBlock stretch(const AudioBlock &block);
    /// The rest. All blocks together hold the samples taken × ratio, rounded to a whole one.
    AudioBlock finish();

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace lumetwin::media
