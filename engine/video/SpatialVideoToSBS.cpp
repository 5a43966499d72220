// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/SpatialVideoToSBS.h"

#include "engine/geometry/SBSComposition.h"
#include "engine/geometry/SBSGeometry.h"
#include "engine/video/OutputSpace.h"
#include "engine/video/VideoConversion.h"
#include "media/EyePair.h"

#include <algorithm>
#include <limits>

namespace lumetwin {

namespace {

// The first system that decodes both views.
constexpr SystemVersion bothViews{14, 0, 0};

using Eyes = media::EyePair<media::Picture>;

/// The eyes of a frame by their tags; a frame of one view shows it to both.
std::optional<Eyes> eyesOf(const media::Frame &frame) {
    std::optional<media::Picture> left;
    std::optional<media::Picture> right;
    for (const media::TaggedPicture &tagged : frame.views()) {
        if (tagged.view == media::StereoView::left)
            left = tagged.picture;
        if (tagged.view == media::StereoView::right)
            right = tagged.picture;
    }
    if (!left && frame.count > 0)
        left = frame.pictures[0].picture;
    if (!left)
        return std::nullopt;
    if (!right)
        right = left;
    return Eyes{std::move(*left), std::move(*right)};
}

media::Container containerOf(SBSOutputFormat format) {
    return format == SBSOutputFormat::movHEVC ? media::Container::quickTime : media::Container::mpeg4;
}

media::VideoCodec codecOf(SBSOutputFormat format) {
    return format == SBSOutputFormat::mp4H264 ? media::VideoCodec::h264 : media::VideoCodec::hevc;
}

/// A size as the platform counts; the writer refuses what is beyond its range.
int pixels(std::int64_t size) {
    return static_cast<int>(std::clamp<std::int64_t>(size, 0, std::numeric_limits<int>::max()));
}

/// The frame loop of one file.
class FrameLoop {
public:
    FrameLoop(const ConversionSettings &settings, const SBSGeometry &geometry, const VideoSource &source,
              media::FrameReader &reader, media::MovieWriter &writer, const ConversionControl &control)
        : swap_(settings.swapLeftRight), timing_(source.timing), clock_(source.timing, source.info.track),
          reader_(reader), writer_(writer), control_(control), composition_(geometry),
          pool_(pixels(geometry.outW), pixels(geometry.outH), media::yuv420, source.info.track.colour) {}

    FrameLoopResult run() {
        while (!control_.cancelled() && !writer_.failed()) {
            const std::optional<media::Frame> frame = reader_.next();
            if (!frame)
                break;
            if (frameCounter_ % 8 == 0 && control_.onFrameProgress)
                control_.onFrameProgress(frameCounter_, timing_.totalFrames);
            if (const std::optional<Eyes> eyes = eyesOf(*frame))
                write(*eyes, *frame);
        }
        return {frameCounter_, clock_.farthestFromSound()};
    }

private:
    void write(const Eyes &eyes, const media::Frame &frame) {
        media::Picture canvas = pool_.take();
        composition_.compose(swap_ ? eyes.right : eyes.left, swap_ ? eyes.left : eyes.right, canvas);
        const OutputClock::Moment moment = clock_.next(frame);
        writer_.append(canvas, moment.time, moment.duration);
        ++frameCounter_;
    }

    bool swap_;
    VideoTiming timing_;
    OutputClock clock_;
    media::FrameReader &reader_;
    media::MovieWriter &writer_;
    const ConversionControl &control_;
    SBSComposition composition_;
    media::PicturePool pool_;
    std::int64_t frameCounter_ = 0;
};

} // namespace

Outcome convertSpatialVideoToSBS(const ConversionSettings &settings, const media::InputFile &input,
                                 const media::OutputFile &output, const ConversionControl &control,
                                 SystemVersion system) {
    VideoSource source(settings, input, control);
    const VideoInfo &info = source.info;
    if (settings.enableResize) // twice the width of an eye might overflow
        media::MovieWriter::requireSize(output.path(), settings.resizeWidth, settings.resizeHeight);
    const SBSGeometry geometry = sbsGeometry(settings, info.width, info.height);
    media::FrameReader reader(source.movie, info.track, system >= bothViews ? media::Views::all : media::Views::base);

    media::VideoEncoding encoding;
    encoding.codec = codecOf(settings.sbsOutputFormat);
    encoding.width = pixels(geometry.outW);
    encoding.height = pixels(geometry.outH);
    encoding.averageBitRate =
        averageBitRate(source.timing.rate, static_cast<double>(geometry.outW) * static_cast<double>(geometry.outH),
                       settings.compressionQuality);
    encoding.frameRate = source.frameRate();
    encoding.colour = info.track.colour;
    encoding.pixelAspect = outputPixelAspect(settings, info);
    requireSpace(output, source.estimatedBytes(encoding.averageBitRate));

    media::MovieWriter writer(output, containerOf(settings.sbsOutputFormat), source.movie.tags());
    if (source.audio)
        writer.addAudio(source.audio->encoding);
    writer.addVideo(encoding);
    writer.start(source.timing.timeScale);

    FrameLoop loop(settings, geometry, source, reader, writer, control);
    return runVideoConversion(source, reader, writer, {"sbs.video", "sbs.audio"}, control, [&] { return loop.run(); });
}

} // namespace lumetwin
