// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/SBSVideoToSpatial.h"

#include "engine/inspection/LayoutInspection.h"
#include "engine/stereo/EyeCutter.h"
#include "engine/stereo/SourceLayout.h"
#include "engine/texts/ProcessorError.h"
#include "engine/video/OutputSpace.h"
#include "engine/video/PartnerStream.h"
#include "engine/video/StereoEncoderSettings.h"
#include "engine/video/VideoConversion.h"
#include "media/CodingDepth.h"

#include <optional>

namespace lumetwin {

namespace {

/// Gives the pictures of the two eyes of each frame.
class EyeFrames {
public:
    EyeFrames(EyeCutter cutter, bool isSwapped) : cutter_(std::move(cutter)), isSwapped_(isSwapped) {}

    /// Takes the second eye from a stream of its own.
    void takeSecondFrom(const media::InputFile &file, media::VideoStream stream, const media::VideoTrack &first,
                        const std::function<bool()> &cancelled) {
        partner_.emplace(file, stream, first, cancelled);
    }

    /// nullopt when the second eye has no picture for this frame.
    std::optional<media::EyePair<media::Picture>> eyes(const media::Frame &frame) {
        const media::Picture &first = frame.pictures[0].picture;
        if (!partner_)
            return media::EyePair<media::Picture>{cutter_.left(first), cutter_.right(first)};
        const std::optional<media::Picture> second = partner_->pictureFor(frame);
        if (!second)
            return std::nullopt;
        media::EyePair<media::Picture> pair{cutter_.left(first), cutter_.right(*second)};
        if (isSwapped_)
            std::swap(pair.left, pair.right);
        return pair;
    }

private:
    EyeCutter cutter_;
    bool isSwapped_;
    std::optional<PartnerStream> partner_;
};

void takeSecondEye(EyeFrames &frames, const StereoLayout &layout, const ConversionInput &input,
                   const media::VideoTrack &first, const ConversionControl &control) {
    const auto cancelled = [&control] { return control.cancelled(); };
    if (layout.arrangement == EyeArrangement::twoPictures)
        throw ProcessorError(words("error.no.second.picture"));
    if (layout.arrangement == EyeArrangement::twoStreams)
        return frames.takeSecondFrom(input, media::VideoStream::second, first, cancelled);
    if (!input.rightEye)
        throw ProcessorError(words("error.no.second.file"));
    frames.takeSecondFrom(*input.rightEye, media::VideoStream::first, first, cancelled);
}

} // namespace

Outcome convertSBSVideoToSpatial(const ConversionSettings &settings, const ConversionInput &input,
                                 const media::OutputFile &output, const ConversionControl &control,
                                 SystemVersion system) {
    const MediaFacts facts = lookClosely(input);
    const StereoLayout layout = sourceLayout(settings.inputLayout, facts);
    requireReadable(layout);

    VideoSource source(settings, input, control);
    const VideoInfo &info = source.info;
    for (Warning &warning : layoutWarnings(layout, facts))
        source.warnings.add(warning.kind, std::move(warning.values));
    if (std::optional<Warning> note = stereoValuesNote(settings, facts))
        source.warnings.add(note->kind, std::move(note->values));
    const EyeCells cells = eyeCells(layout, info.width, info.height);
    const EyeSize eye = eyeSize(settings, cells);
    media::FrameReader reader(source.movie, info.track, media::Views::base);

    // Larger ones would overflow the settings' arithmetic.
    media::MovieWriter::requireSize(output.path(), eye.width, eye.height);
    media::StereoVideoEncoding encoding = stereoVideoEncoding(
        settings, eye, source.timing.rate, system, stereoMetadata(settings, facts, input.disparityAdjustment));
    encoding.frameRate = source.frameRate();
    encoding.depth = source.depth(settings.bitDepth, media::deepestSpatialVideo());
    RangeConversion range =
        source.rangeConversion(lightLevels(info, reader), encoding.depth, false, encoding.width, encoding.height);
    encoding.colour = range.colour();
    encoding.levels = range.levels();
    encoding.pixelAspect = eyePixelAspect(layout, outputPixelAspect(settings, info));
    requireSpace(output, source.estimatedBytes(encoding.averageBitRate));

    EyeFrames frames(
        EyeCutter(eyeExtraction(settings, eye, cells), eye, info.track.colour, range.workingDepth(encoding.depth)),
        settings.swapLeftRight != layout.rightEyeFirst);
    if (!isInOnePicture(layout))
        takeSecondEye(frames, layout, input, info.track, control);

    media::MovieWriter writer(output, media::Container::quickTime, source.movie.tags());
    writer.addVideo(encoding);
    if (source.audio)
        writer.addAudio(source.audio->encoding);
    writer.start(source.timing.timeScale);

    const auto writeFrame = [&](const media::Frame &frame, OutputClock &clock) {
        const std::optional<media::EyePair<media::Picture>> eyes = frames.eyes(frame);
        if (!eyes)
            return false;
        const OutputClock::Moment moment = clock.next(frame);
        writer.append(range.apply(eyes->left), range.apply(eyes->right), moment.time, moment.duration);
        return true;
    };
    return runVideoConversion(source, reader, writer, {"spatial.video", "spatial.audio"}, control, writeFrame);
}

} // namespace lumetwin
