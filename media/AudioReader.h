// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/AudioBlock.h"
#include "media/MovieFile.h"

#include <memory>
#include <optional>

namespace lumetwin::media {

/// The AAC sample rate (ISO/IEC 14496-3, table 1.18) for a source rate: the same rate, otherwise the next higher one,
/// otherwise the highest.
int aacSampleRate(double sourceRate);

/// Decodes a movie's audio track to 16-bit PCM with the given rate and one or two channels (more are mixed down). It
/// starts at the given time of the movie: earlier sound is cut off; a late start and gaps are filled with silence.
class AudioReader {
public:
    /// Throws MediaError when the track cannot be decoded or is encrypted. next() throws it when that is found later.
    AudioReader(const InputFile &file, const AudioTrack &track, int sampleRate, int channels, double fromTime);
    ~AudioReader();
    std::optional<AudioBlock> next();

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace lumetwin::media
