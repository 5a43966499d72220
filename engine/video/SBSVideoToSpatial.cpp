// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/SBSVideoToSpatial.h"

#include "engine/stereo/EyeExtraction.h"
#include "engine/video/OutputSpace.h"
#include "engine/video/StereoEncoderSettings.h"
#include "engine/video/VideoConversion.h"
#include "media/Compositor.h"

namespace lumetwin {

namespace {

/// Cuts the pictures of the two eyes out of frames.
class EyeCutter {
public:
    EyeCutter(const EyeExtraction &extraction, const EyeSize &eye, const media::ColourTags &colour)
        : extraction_(extraction), colour_(colour),
          pool_(static_cast<int>(eye.width), static_cast<int>(eye.height), media::yuv420, colour) {}

    media::Picture left(const media::Picture &frame) { return cut(frame, extraction_.left); }
    media::Picture right(const media::Picture &frame) { return cut(frame, extraction_.right); }

private:
    /// Whether the eye can be a view into the memory of the frame.
    bool isPartOf(const media::Picture &frame, const media::Placement &placement) const {
        return extraction_.unscaled && frame.format == media::yuv420 && frame.colour == colour_ &&
               static_cast<int>(placement.source.x) % 2 == 0 &&
               placement.source.x + placement.source.width <= frame.width && placement.source.height <= frame.height;
    }

    media::Picture cut(const media::Picture &frame, const media::Placement &placement) {
        if (isPartOf(frame, placement))
            return media::cropped(frame, static_cast<int>(placement.source.x), 0,
                                  static_cast<int>(placement.source.width), static_cast<int>(placement.source.height));
        media::Picture canvas = pool_.take();
        media::Compositor::fillBlack(canvas);
        const media::Placement shown = withinPicture(placement, frame.width, frame.height);
        if (shown.source.width > 0 && shown.source.height > 0)
            compositor_.place(frame, shown, canvas);
        return canvas;
    }

    EyeExtraction extraction_;
    media::ColourTags colour_;
    media::PicturePool pool_;
    media::Compositor compositor_;
};

} // namespace

Outcome convertSBSVideoToSpatial(const ConversionSettings &settings, const media::InputFile &input,
                                 const media::OutputFile &output, const ConversionControl &control,
                                 SystemVersion system) {
    VideoSource source(settings, input, control);
    const VideoInfo &info = source.info;
    const EyeSize eye = eyeSize(settings, info.width, info.height);
    media::FrameReader reader(source.movie, info.track, media::Views::base);

    // Larger ones would overflow the settings' arithmetic.
    media::MovieWriter::requireSize(output.path(), eye.width, eye.height);
    media::StereoVideoEncoding encoding = stereoVideoEncoding(settings, eye, source.timing.rate, system);
    encoding.frameRate = source.frameRate();
    encoding.colour = info.track.colour;
    encoding.pixelAspect = outputPixelAspect(settings, info);
    requireSpace(output, source.estimatedBytes(encoding.averageBitRate));

    media::MovieWriter writer(output, media::Container::quickTime, source.movie.tags());
    writer.addVideo(encoding);
    if (source.audio)
        writer.addAudio(source.audio->encoding);
    writer.start(source.timing.timeScale);

    EyeCutter cutter(eyeExtraction(settings, eye, info.width, info.height), eye, info.track.colour);
    const auto writeFrame = [&](const media::Frame &frame, OutputClock &clock) {
        const media::Picture &picture = frame.pictures[0].picture;
        const OutputClock::Moment moment = clock.next(frame);
        writer.append(cutter.left(picture), cutter.right(picture), moment.time, moment.duration);
        return true;
    };
    return runVideoConversion(source, reader, writer, {"spatial.video", "spatial.audio"}, control, writeFrame);
}

} // namespace lumetwin
