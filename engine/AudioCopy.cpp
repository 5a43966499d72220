// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/AudioCopy.h"

#include "media/MediaError.h"

#include <algorithm>

namespace lumetwin {

namespace {

constexpr double defaultSampleRate = 44100;
constexpr int defaultChannels = 2;
constexpr std::int64_t bitRate = 192000;

} // namespace

media::AudioEncoding audioEncoding(const media::AudioTrack &track) {
    const double rate = track.sampleRate > 0 ? track.sampleRate : defaultSampleRate;
    const int channels = track.channels > 0 ? track.channels : defaultChannels;
    return {media::aacSampleRate(rate), std::min(channels, 2), bitRate};
}

std::optional<AudioCopy> prepareAudioCopy(const media::MovieFile &movie, double fromTime,
                                          const ConversionControl &control) {
    const std::optional<media::AudioTrack> track = movie.audioTrack();
    if (!track)
        return std::nullopt;
    const media::AudioEncoding encoding = audioEncoding(*track);
    try {
        return AudioCopy{std::make_unique<media::AudioReader>(movie.path(), *track, encoding.sampleRate,
                                                              encoding.channels, fromTime),
                         encoding};
    } catch (const media::MediaError &error) {
        if (control.onWarning)
            control.onWarning(std::string(error.what()) + "; the video is written without sound");
        return std::nullopt;
    }
}

void copyAudio(AudioCopy &copy, media::MovieWriter &writer, const ConversionControl &control) {
    try {
        while (const std::optional<media::AudioBlock> block = copy.reader->next())
            writer.append(*block);
    } catch (const std::exception &error) {
        // The reader has run dry; what was copied stays.
        if (control.onWarning)
            control.onWarning(std::string(error.what()) + "; the sound ends early");
    }
    writer.finishAudio();
}

} // namespace lumetwin
