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

/// The sound of one conversion: the source's first audio track, decoded to 16-bit PCM, stretched where the pictures are
/// not as long as the source's, and how it is coded again.
struct AudioCopy {
    std::unique_ptr<media::AudioReader> reader;
    std::unique_ptr<media::AudioStretcher> stretcher; ///< none where the sound stays as it is
    media::AudioEncoding encoding;
};

/// How a track is coded: AAC at 192 kbit/s, its own sample rate (44100 Hz when it states none) or the next one that AAC
/// carries, and one channel or two.
media::AudioEncoding audioEncoding(const media::AudioTrack &track);

/// Prepares the copy of a movie's first audio track, beginning at the given time of the movie (seconds), its duration
/// multiplied by `stretch`. Nothing when there is no audio track or it cannot be decoded (then with a warning): the
/// video is written without sound.
std::optional<AudioCopy> prepareAudioCopy(const media::MovieFile &movie, double fromTime, double stretch,
                                          WarningList &warnings);

/// The copy loop: reads the track to its end, or until the user cancels, and appends it to the writer. A reader that
/// fails ends the sound with a warning.
void copyAudio(AudioCopy &copy, media::MovieWriter &writer, const ConversionControl &control, WarningList &warnings);

} // namespace lumetwin
