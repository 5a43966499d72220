// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/Inspection.h"
#include "engine/preview/PreviewSize.h"
#include "engine/preview/PreviewSource.h"
#include "engine/stereo/SourceLayout.h"
#include "engine/texts/ProcessorError.h"
#include "media/DecodingCost.h"
#include "media/EyePair.h"
#include "media/ImagePreview.h"
#include "media/PhotoPackings.h"
#include "media/SpatialPhoto.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace lumetwin {

namespace {

using media::ReducedImage;

/// A layout of two eyes in one picture, or no layout: the picture is the only eye.
using Cells = std::optional<EyeCells>;

/// The cells of a picture of that size; nullopt where the layout has no eyes in it, or it is too small for them.
Cells cellsIn(const StereoLayout &layout, std::int64_t width, std::int64_t height) {
    if (!isInOnePicture(layout))
        return std::nullopt;
    const EyeCells cells = eyeCells(layout, width, height);
    return cells.shownWidth > 0 && cells.shownHeight > 0 ? Cells(cells) : std::nullopt;
}

EyeCells wholeCells(std::int64_t width, std::int64_t height) {
    return eyeCells({.arrangement = EyeArrangement::twoPictures}, width, height);
}

/// The size that is needed of a picture with these cells, so that an eye is not smaller than the preview.
media::PixelSize neededSize(const media::PixelSize &whole, const EyeCells &cells, const PreviewRequest &request) {
    const PreviewSize limits = previewLimits(request);
    const PreviewSize eye = fittedPreview(static_cast<double>(cells.shownWidth), static_cast<double>(cells.shownHeight),
                                          1, limits.width, limits.height);
    const auto side = [](int length, double cell, int target) {
        const double needed = std::ceil(length / cell * target);
        return static_cast<int>(std::min<double>(needed, std::numeric_limits<int>::max() / 16.0));
    };
    return {side(whole.width, cells.left.width, eye.width), side(whole.height, cells.left.height, eye.height)};
}

SourceEye eyeIn(const ReducedImage &photo, const media::Rect &cell) {
    const double scale = 1.0 / photo.reduction;
    return {photo.image.picture,
            {cell.x * scale, cell.y * scale, cell.width * scale, cell.height * scale},
            photo.image.metadata.iccProfile};
}

PreviewSource sourceOf(const EyeCells &cells, SourceEye left, std::optional<SourceEye> right) {
    PreviewSource source{.facts = {}, .left = std::move(left), .right = std::move(right)};
    source.facts.eyeWidth = cells.shownWidth;
    source.facts.eyeHeight = cells.shownHeight;
    return source;
}

/// The eyes in one picture, or the whole picture.
PreviewSource inOnePicture(const media::InputFile &file, const PreviewRequest &request) {
    const auto cellsFor = [&](const media::PixelSize &whole) {
        return cellsIn(request.layout, whole.width, whole.height).value_or(wholeCells(whole.width, whole.height));
    };
    const ReducedImage photo = media::readReduced(
        file, [&](const media::PixelSize &whole) { return neededSize(whole, cellsFor(whole), request); });
    const EyeCells cells = cellsFor(photo.whole);
    const bool hasBoth = cellsIn(request.layout, photo.whole.width, photo.whole.height).has_value();
    return sourceOf(cells, eyeIn(photo, cells.left), hasBoth ? std::optional(eyeIn(photo, cells.right)) : std::nullopt);
}

/// The eyes in a picture each.
PreviewSource inTwoPictures(media::EyePair<ReducedImage> photos, const StereoLayout &layout) {
    const media::PixelSize &size = photos.left.whole;
    const media::PixelSize &other = photos.right.whole;
    if (size.width != other.width || size.height != other.height)
        throw ProcessorError(
            words("error.eye.sizes.differ.format", size.width, size.height, other.width, other.height));
    if (layout.rightEyeFirst)
        std::swap(photos.left, photos.right);
    const EyeCells cells = wholeCells(size.width, size.height);
    return sourceOf(cells, eyeIn(photos.left, cells.left), eyeIn(photos.right, cells.right));
}

/// Nobody sees the edges of blocks in a picture that is reduced to half its size.
media::PhotoSamples samplesFor(const media::StereoPhotoFacts &facts, const PreviewRequest &request) {
    const PreviewSize limits = previewLimits(request);
    const bool isHalf = facts.width / 2 >= static_cast<unsigned>(limits.width) ||
                        facts.height / 2 >= static_cast<unsigned>(limits.height);
    return isHalf ? media::PhotoSamples::rough : media::PhotoSamples::coded;
}

/// The left eye, shown for both.
PreviewSource ofLeftEye(const media::ImageFile &photo, media::PhotoSamples samples) {
    media::StillImage left = media::readSpatialPhotoEye(photo, media::Eye::left, samples);
    const media::Rect whole = wholeOf(left.picture);
    const SourceEye eye{std::move(left.picture), whole, std::move(left.metadata.iccProfile)};
    PreviewSource source = sourceOf(wholeCells(eye.picture.width, eye.picture.height), eye, eye);
    source.facts.isFlat = true;
    return source;
}

PreviewSource ofBothEyes(const media::ImageFile &photo, media::PhotoSamples samples) {
    media::EyePair<media::StillImage> eyes;
    media::readSpatialPhoto(photo, samples, [&](media::Eye eye, media::StillImage image) {
        (eye == media::Eye::left ? eyes.left : eyes.right) = std::move(image);
    });
    const media::Picture &left = eyes.left.picture;
    if (left.width != eyes.right.picture.width || left.height != eyes.right.picture.height)
        throw ProcessorError(words("error.photo.sizes.differ"));
    const auto eyeOf = [](media::StillImage &image) {
        return SourceEye{image.picture, wholeOf(image.picture), std::move(image.metadata.iccProfile)};
    };
    return sourceOf(wholeCells(left.width, left.height), eyeOf(eyes.left), eyeOf(eyes.right));
}

PreviewSource ofStereoGroup(const media::ImageFile &photo, const PreviewRequest &request) {
    const media::StereoPhotoFacts facts = media::stereoPhotoFacts(photo);
    const media::PhotoSamples samples = samplesFor(facts, request);
    const double pixels = 2.0 * facts.width * facts.height;
    const bool isSlow = media::isSlowToDecode(pixels, static_cast<double>(photo.input().size()));
    return request.detail == PreviewDetail::soon && isSlow ? ofLeftEye(photo, samples) : ofBothEyes(photo, samples);
}

} // namespace

media::Rect wholeOf(const media::Picture &picture) {
    return {0, 0, static_cast<double>(picture.width), static_cast<double>(picture.height)};
}

PreviewSource photoSource(const ConversionInput &input, const PreviewRequest &request) {
    const StereoLayout &layout = request.layout;
    if (isSpatialPhoto(lookAt(input)))
        if (const media::ImageFile photo(input); media::stereoPhotoFacts(photo).hasBothEyes)
            return ofStereoGroup(photo, request);
    const auto needed = [&](const media::PixelSize &whole) {
        return neededSize(whole, wholeCells(whole.width, whole.height), request);
    };
    if (layout.arrangement == EyeArrangement::twoFiles && input.rightEye)
        return inTwoPictures({media::readReduced(input, needed), media::readReduced(*input.rightEye, needed)}, layout);
    if (layout.arrangement == EyeArrangement::twoPictures && media::readPhotoPackings(input).eyePictures >= 2)
        return inTwoPictures(media::readReducedEyes(media::ImageFile(input), needed), layout);
    return inOnePicture(input, request);
}

} // namespace lumetwin
