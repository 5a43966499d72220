// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/AudioCopy.h"

#include "engine/texts/MediaErrorTexts.h"

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

std::optional<AudioCopy> prepareAudioCopy(const media::MovieFile &movie, double fromTime, double stretch,
                                          WarningList &warnings) {
    const std::optional<media::AudioTrack> track = movie.audioTrack();
    if (!track)
        return std::nullopt;
    AudioCopy copy;
    copy.encoding = audioEncoding(*track);
    try {
        copy.reader = std::make_unique<media::AudioReader>(movie.file(), *track, copy.encoding.sampleRate,
                                                           copy.encoding.channels, fromTime);
        if (stretch != 1)
            copy.stretcher =
                std::make_unique<media::AudioStretcher>(copy.encoding.sampleRate, copy.encoding.channels, stretch);
        return copy;
    } catch (const std::exception &error) {
        warnings.add(WarningKind::withoutSound, {causeOf(error).shown});
        return std::nullopt;
    }
}

void copyAudio(AudioCopy &copy, media::MovieWriter &writer, const ConversionControl &control, WarningList &warnings) {
    try {
        while (!control.cancelled()) {
            const std::optional<media::AudioBlock> block = copy.reader->next();
            if (!block)
                break;
            writer.append(copy.stretcher ? copy.stretcher->stretch(*block) : *block);
        }
    } catch (const std::exception &error) {
        // Reading failed. The sound that was copied so far is kept.
        warnings.add(WarningKind::soundEndsEarly, {causeOf(error).shown});
    }
    if (copy.stretcher)
        writer.append(copy.stretcher->finish());
    writer.finishAudio();
}

} // namespace lumetwin
