// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/VideoConversion.h"

#include "engine/video/BitRateRule.h"
#include "engine/video/OutputDepth.h"
#include "media/MediaError.h"
#include "media/NamedThread.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace lumetwin {

namespace {

constexpr std::chrono::milliseconds cancelInterval{20};
constexpr std::int64_t progressInterval = 8; // frames between two reports of progress
constexpr double tellableSpeed = 0.5;        // percent
constexpr double tellableDistance = 0.06;    // seconds
constexpr double largestBitRate = 9e18;      // must fit into a 64-bit integer

void addNotes(VideoSource &source, bool copiesSound) {
    const media::OtherContents others = source.movie.otherContents();
    const auto note = [&](WarningKind kind, int count) {
        if (count > 0)
            source.warnings.add(kind, {std::int64_t{count}});
    };
    if (copiesSound)
        note(WarningKind::soundTracksLeft, others.audioTracks);
    note(WarningKind::subtitlesLeft, others.subtitleTracks);
    note(WarningKind::chaptersLeft, others.chapters);
    note(WarningKind::rotationLeft, source.info.track.rotation);
}

struct FrameLoopResult {
    std::int64_t written = 0;
    double farthestFromSound = 0; ///< seconds
};

FrameLoopResult writeFrames(const VideoSource &source, media::FrameReader &reader, const media::MovieWriter &writer,
                            const ConversionControl &control, const FrameWriter &writeFrame) {
    OutputClock clock(source.timing, source.info.track);
    std::int64_t written = 0;
    while (!control.cancelled() && !writer.failed()) {
        const std::optional<media::Frame> frame = reader.next();
        if (!frame)
            break;
        if (written % progressInterval == 0 && control.onFrameProgress)
            control.onFrameProgress(written, source.timing.totalFrames);
        if (writeFrame(*frame, clock))
            ++written;
    }
    return {written, clock.farthestFromSound()};
}

/// Adds the warnings that are known when all frames are written.
void addWarnings(VideoSource &source, const media::FrameReader &reader, const FrameLoopResult &result) {
    if (reader.damaged())
        source.warnings.add(WarningKind::framesMissing, {result.written, source.expectedFrames()});
    const double percent = (1 / source.timing.stretch - 1) * 100;
    if (std::abs(percent) > tellableSpeed)
        source.warnings.add(WarningKind::speedChanged, {percent});
    if (source.audio && result.farthestFromSound > tellableDistance)
        source.warnings.add(WarningKind::soundAway, {result.farthestFromSound});
}

} // namespace

media::PixelAspect outputPixelAspect(const ConversionSettings &settings, const VideoInfo &info) {
    return settings.enableResize ? media::PixelAspect{} : info.track.pixelAspect;
}

std::int64_t averageBitRate(double first, double second, double quality) {
    const double rate = first * second * bitsPerPixel * quality;
    return rate > smallestBitRate ? static_cast<std::int64_t>(std::min(rate, largestBitRate)) : smallestBitRate;
}

VideoSource::VideoSource(const ConversionSettings &settings, const media::InputFile &input,
                         const ConversionControl &control)
    : movie(input, [&] { return control.cancelled(); }), info(loadVideoInfo(movie)),
      timing(videoTiming(info, settings.keepTiming, settings.copyAudio ? movie.audioTrack() : std::nullopt)) {
    if (settings.copyAudio)
        audio = prepareAudioCopy(movie, timing.begin, timing.stretch, warnings);
    addNotes(*this, settings.copyAudio);
}

std::int64_t VideoSource::expectedFrames() const {
    return info.track.frameCount > 0 ? info.track.frameCount : timing.totalFrames;
}

double VideoSource::estimatedBytes(std::int64_t videoBitRate) const {
    const double soundBitRate = audio ? static_cast<double>(audio->encoding.bitRate) : 0;
    return (static_cast<double>(videoBitRate) + soundBitRate) * info.duration * timing.stretch / 8;
}

int VideoSource::depth(BitDepth wish, int deepest, bool limitOfCodec) {
    OutputDepth result = outputDepth(wish, info.track.format.depth, deepest, limitOfCodec);
    for (Warning &note : result.notes)
        warnings.add(note.kind, std::move(note.values));
    return result.bits;
}

RangeConversion VideoSource::rangeConversion(const media::LightLevels &levels, int depth, bool isH264, int width,
                                             int height) {
    const bool losesDepth = depth == 8 && info.track.format.depth > 8;
    RangeConversion conversion(isH264 || losesDepth, info.track.colour, levels, width, height);
    if (conversion.converts())
        warnings.add(WarningKind::standardRange);
    else if (levels.changing)
        warnings.add(WarningKind::dynamicRangeLeft);
    return conversion;
}

media::LightLevels lightLevels(const VideoInfo &info, media::FrameReader &reader) {
    media::LightLevels levels = info.track.levels;
    const media::Frame *first = reader.ahead();
    if (first && first->levels.mastering)
        levels.mastering = first->levels.mastering;
    if (first && first->levels.content)
        levels.content = first->levels.content;
    levels.changing = levels.changing || (first && first->levels.changing);
    return levels;
}

double VideoSource::frameRate() const {
    return timing.keepsTimes ? info.track.pace.rate.value() : timing.framesPerSecond();
}

Outcome runVideoConversion(VideoSource &source, media::FrameReader &reader, media::MovieWriter &writer,
                           const ThreadNames &names, const ConversionControl &control, const FrameWriter &writeFrame) {
    FrameLoopResult result;
    media::NamedThread video(names.video, [&] {
        try {
            result = writeFrames(source, reader, writer, control, writeFrame);
            if (!writer.failed() && !control.cancelled() && result.written == 0)
                throw media::MediaError(source.movie.path(), media::MediaOperation::decode, 0,
                                        media::MediaReason::noFrame);
        } catch (...) {
            writer.abandon();
            writer.finishVideo();
            throw;
        }
        if (control.cancelled())
            writer.abandon();
        writer.finishVideo();
    });
    std::optional<media::NamedThread> audio;
    if (source.audio)
        audio.emplace(names.audio, [&] { copyAudio(*source.audio, writer, control, source.warnings); });
    // Both threads may be waiting for the writer. When the user cancels, the writer wakes them.
    while (!video.endsWithin(cancelInterval) || (audio && !audio->endsWithin(cancelInterval)))
        if (control.cancelled())
            writer.abandon();
    try {
        if (audio)
            audio->wait();
        video.wait();
    } catch (...) {
        writer.cancel();
        throw;
    }
    Outcome outcome{writer.finish([&] { return control.cancelled(); }), result.written, source.expectedFrames(), {}};
    if (outcome.written)
        addWarnings(source, reader, result);
    outcome.warnings = source.warnings.take();
    return outcome;
}

} // namespace lumetwin
