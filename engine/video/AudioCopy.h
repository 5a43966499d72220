// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionControl.h"
#include "engine/Outcome.h"
#include "media/AudioReader.h"
#include "media/AudioStretcher.h"
#include "media/MovieFile.h"
#include "media/MovieWriter.h"

#include <memory>
#include <optional>

namespace lumetwin {

/// The sound of one conversion: the source's first audio track, decoded to 16-bit PCM, stretched if the output is
/// longer or shorter than the source, and the parameters of its encoder.
struct AudioCopy {
    std::unique_ptr<media::AudioReader> reader;
    std::unique_ptr<media::AudioStretcher> stretcher; ///< null when the sound is not stretched
    media::AudioEncoding encoding;
};

/// The encoding of a track: AAC at 192 kbit/s, with one or two channels, at the track's sample rate (44100 Hz when
/// unknown) or the nearest one that AAC supports.
media::AudioEncoding audioEncoding(const media::AudioTrack &track);

/// Prepares the copy of a movie's first audio track. fromTime: its start in the movie, in seconds. stretch: factor for
/// its duration. Returns nullopt when there is no audio track, or, with a warning, when it cannot be decoded. Then the
/// video is written without sound.
std::optional<AudioCopy> prepareAudioCopy(const media::MovieFile &movie, double fromTime, double stretch,
                                          WarningList &warnings);

/// Copies the track: reads it to its end, or until the user cancels, and appends it to the writer. If reading fails,
/// the sound ends there, with a warning.
void copyAudio(AudioCopy &copy, media::MovieWriter &writer, const ConversionControl &control, WarningList &warnings);

} // namespace lumetwin
