// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/Inspection.h"
#include "engine/preview/PreviewSource.h"
#include "engine/stereo/SourceLayout.h"
#include "engine/texts/ProcessorError.h"
#include "engine/video/FrameEyes.h"
#include "media/FilmFrames.h"
#include "media/MediaError.h"

#include <cmath>
#include <utility>

namespace lumetwin {

namespace {

using media::FilmFacts;
using media::FilmFrames;
using media::Picture;

constexpr double usualTolerance = 0.02; ///< seconds, where the frame rate is unknown

/// What is usual for films that do not say it: limited range, and the matrix of their size. Matrices that are not
/// linear, or reserved, count as not said.
Picture withUsualColour(Picture picture) {
    constexpr int unspecified = 2;
    constexpr int smallestHD = 720;
    media::ColourTags &colour = picture.colour;
    if (picture.format.model != media::ColourModel::yuv)
        return picture;
    const bool isUsable = colour.matrix == 1 || (colour.matrix >= 4 && colour.matrix <= 9);
    if (!isUsable || colour.matrix == unspecified)
        colour.matrix = picture.height >= smallestHD ? 1 : 6; // ITU-T H.273, table 4: BT.709, BT.601
    if (colour.range == media::ColourRange::unspecified)
        colour.range = media::ColourRange::limited;
    return picture;
}

SourceEye eyeIn(const Picture &picture, const media::Rect &part) {
    return {withUsualColour(picture), part, {}};
}

double ratioOf(const media::PixelAspect &aspect) {
    return static_cast<double>(aspect.width) / aspect.height;
}

std::int64_t whole(double length) {
    return static_cast<std::int64_t>(length);
}

PreviewFacts factsOf(const FilmFacts &film, double seconds) {
    PreviewFacts facts;
    facts.seconds = seconds;
    facts.duration = film.duration;
    facts.frameRate = film.frameRate;
    facts.pixelAspect = ratioOf(film.pixelAspect);
    facts.eyeWidth = whole(film.naturalWidth);
    facts.eyeHeight = whole(film.naturalHeight);
    return facts;
}

media::FrameChoice choiceOf(const PreviewRequest &request) {
    switch (request.detail) {
    case PreviewDetail::exact:
        return media::FrameChoice::exact;
    case PreviewDetail::near:
        break;
    case PreviewDetail::soon:
        return media::FrameChoice::soon;
    }
    return media::FrameChoice::near;
}

FilmFrames::Moment momentOf(FilmFrames &film, const ConversionInput &input, const PreviewRequest &request) {
    if (std::optional<FilmFrames::Moment> moment = film.frameAt(request.position))
        return std::move(*moment);
    throw media::MediaError(input.path(), media::MediaOperation::decode, 0, media::MediaReason::noFrame);
}

PreviewSource spatialFilm(const ConversionInput &input, const PreviewRequest &request) {
    FilmFrames film(input, media::Views::all, choiceOf(request));
    const FilmFrames::Moment moment = momentOf(film, input, request);
    const std::optional<FrameEyes> eyes = eyesOf(moment.frame);
    if (!eyes)
        throw media::MediaError(input.path(), media::MediaOperation::decode, 0, media::MediaReason::noFrame);
    PreviewSource source{factsOf(film.facts(), moment.seconds), eyeIn(eyes->left, wholeOf(eyes->left)), {}};
    source.facts.isFlat = moment.isWithoutSecondView;
    if (eyes->hasBoth || moment.isWithoutSecondView)
        source.right = eyeIn(eyes->right, wholeOf(eyes->right));
    return source;
}

void requireSameSize(const FilmFacts &first, const FilmFacts &second) {
    if (first.naturalWidth != second.naturalWidth || first.naturalHeight != second.naturalHeight)
        throw ProcessorError(words("error.eye.sizes.differ.format", whole(first.naturalWidth),
                                   whole(first.naturalHeight), whole(second.naturalWidth),
                                   whole(second.naturalHeight)));
}

/// The picture of the other stream at the time of the first one's; nullopt when there is none.
std::optional<Picture> partnerOf(const FilmFrames::Moment &first, const FilmFacts &facts, const media::InputFile &file,
                                 media::VideoStream stream) {
    FilmFrames partner(file, media::Views::base, media::FrameChoice::exact, stream);
    requireSameSize(facts, partner.facts());
    const std::optional<FilmFrames::Moment> second = partner.frameAtTime(first.seconds);
    const double tolerance = facts.frameRate > 0 ? 0.5 / facts.frameRate : usualTolerance;
    if (!second || std::abs(second->seconds - first.seconds) > tolerance)
        return std::nullopt;
    return second->frame.pictures[0].picture;
}

std::optional<Picture> secondPicture(const FilmFrames::Moment &first, const FilmFacts &facts,
                                     const ConversionInput &input, const StereoLayout &layout) {
    if (layout.arrangement == EyeArrangement::twoStreams && facts.videoStreams > 1)
        return partnerOf(first, facts, input, media::VideoStream::second);
    if (layout.arrangement == EyeArrangement::twoFiles && input.rightEye)
        return partnerOf(first, facts, *input.rightEye, media::VideoStream::first);
    return std::nullopt;
}

/// The eyes in the frames of one stream, or in those of two.
PreviewSource packedFilm(const ConversionInput &input, const PreviewRequest &request) {
    FilmFrames film(input, media::Views::base, choiceOf(request));
    const FilmFrames::Moment moment = momentOf(film, input, request);
    const Picture &picture = moment.frame.pictures[0].picture;
    PreviewSource source{factsOf(film.facts(), moment.seconds), {}, {}};
    PreviewFacts &facts = source.facts;
    const StereoLayout &layout = request.layout;
    const EyeCells cells = eyeCells(layout, facts.eyeWidth, facts.eyeHeight);
    source.left = eyeIn(picture, cells.left);
    if (isInOnePicture(layout)) {
        if (cells.shownWidth < 1 || cells.shownHeight < 1) {
            source.left.part = wholeOf(picture);
            return source;
        }
        source.right = eyeIn(picture, cells.right);
        facts.eyeWidth = cells.shownWidth;
        facts.eyeHeight = cells.shownHeight;
        facts.pixelAspect = ratioOf(eyePixelAspect(layout, film.facts().pixelAspect));
    } else if (const std::optional<Picture> second = secondPicture(moment, film.facts(), input, layout)) {
        source.right = eyeIn(*second, cells.right);
        if (layout.rightEyeFirst)
            std::swap(source.left, *source.right);
    }
    return source;
}

} // namespace

PreviewSource filmSource(const ConversionInput &input, const PreviewRequest &request) {
    return isSpatialVideo(lookAt(input)) ? spatialFilm(input, request) : packedFilm(input, request);
}

} // namespace lumetwin
