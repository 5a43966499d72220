// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/SpatialVideoToSBS.h"

#include "engine/geometry/SBSComposition.h"
#include "engine/geometry/SBSGeometry.h"
#include "engine/video/FrameEyes.h"
#include "engine/video/OutputSpace.h"
#include "engine/video/VideoConversion.h"
#include "media/CodingDepth.h"

#include <algorithm>
#include <limits>

namespace lumetwin {

namespace {

// The first system version that decodes both views.
constexpr SystemVersion bothViews{14, 0, 0};

media::Container containerOf(SBSOutputFormat format) {
    switch (format) {
    case SBSOutputFormat::movHEVC:
        return media::Container::quickTime;
    case SBSOutputFormat::mkvH264:
    case SBSOutputFormat::mkvH265:
        return media::Container::matroska;
    default:
        return media::Container::mpeg4;
    }
}

media::VideoCodec codecOf(SBSOutputFormat format) {
    const bool isH264 = format == SBSOutputFormat::mp4H264 || format == SBSOutputFormat::mkvH264;
    return isH264 ? media::VideoCodec::h264 : media::VideoCodec::hevc;
}

/// A size as an int. The writer refuses sizes that are too large.
int pixels(std::int64_t size) {
    return static_cast<int>(std::clamp<std::int64_t>(size, 0, std::numeric_limits<int>::max()));
}

} // namespace

Outcome convertSpatialVideoToSBS(const ConversionSettings &settings, const ConversionInput &input,
                                 const media::OutputFile &output, const ConversionControl &control,
                                 SystemVersion system) {
    VideoSource source(settings, input, control);
    const VideoInfo &info = source.info;
    if (settings.enableResize) // twice the width of an eye could overflow
        media::MovieWriter::requireSize(output.path(), settings.resizeWidth, settings.resizeHeight);
    const SBSGeometry geometry = sbsGeometry(settings, info.width, info.height);
    media::FrameReader reader(source.movie, info.track, system >= bothViews ? media::Views::all : media::Views::base);

    media::VideoEncoding encoding;
    encoding.codec = codecOf(settings.sbsOutputFormat);
    encoding.width = pixels(geometry.outW);
    encoding.height = pixels(geometry.outH);
    media::MovieWriter::requireSize(output.path(), encoding.width, encoding.height);
    encoding.averageBitRate =
        averageBitRate(source.timing.rate, static_cast<double>(geometry.outW) * static_cast<double>(geometry.outH),
                       settings.compressionQuality);
    encoding.frameRate = source.frameRate();
    const bool isHEVC = encoding.codec == media::VideoCodec::hevc;
    encoding.depth = source.depth(settings.bitDepth, media::deepestVideo(encoding.codec), !isHEVC);
    RangeConversion range =
        source.rangeConversion(lightLevels(info, reader), encoding.depth, !isHEVC, encoding.width, encoding.height);
    encoding.colour = range.colour();
    encoding.levels = range.levels();
    encoding.pixelAspect = outputPixelAspect(settings, info);
    encoding.packing =
        media::StereoPacking{media::StereoPacking::Arrangement::sideBySide, settings.swapLeftRight, settings.halfWidth};
    requireSpace(output, source.estimatedBytes(encoding.averageBitRate));

    media::MovieWriter writer(output, containerOf(settings.sbsOutputFormat), source.movie.tags());
    if (source.audio)
        writer.addAudio(source.audio->encoding);
    writer.addVideo(encoding);
    writer.start(source.timing.timeScale);

    SBSComposition composition(geometry);
    media::PicturePool pool(encoding.width, encoding.height,
                            {media::ColourModel::yuv, range.workingDepth(encoding.depth), 1, 1}, info.track.colour);
    const auto writeFrame = [&](const media::Frame &frame, OutputClock &clock) {
        const std::optional<FrameEyes> eyes = eyesOf(frame);
        if (!eyes)
            return false;
        media::Picture canvas = pool.take();
        const bool swap = settings.swapLeftRight;
        composition.compose(swap ? eyes->right : eyes->left, swap ? eyes->left : eyes->right, canvas);
        const OutputClock::Moment moment = clock.next(frame);
        writer.append(range.apply(canvas), moment.time, moment.duration);
        return true;
    };
    return runVideoConversion(source, reader, writer, {"sbs.video", "sbs.audio"}, control, writeFrame);
}

} // namespace lumetwin
