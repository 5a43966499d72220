// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/photo/SBSImageToSpatial.h"

#include "engine/inspection/LayoutInspection.h"
#include "engine/photo/PhotoNotes.h"
#include "engine/photo/SpatialPhotoError.h"
#include "engine/photo/SpatialPhotoMetadata.h"
#include "engine/stereo/EyeExtraction.h"
#include "engine/stereo/SourceLayout.h"
#include "engine/texts/FileNames.h"
#include "engine/texts/MediaErrorTexts.h"
#include "engine/texts/ProcessorError.h"
#include "media/Compositor.h"
#include "media/EyePair.h"
#include "media/Image.h"
#include "media/Memory.h"
#include "media/PhotoPackings.h"
#include "media/SRGB.h"

#include <algorithm>
#include <future>
#include <iterator>
#include <limits>
#include <optional>
#include <stdexcept>

namespace lumetwin {

namespace {

using media::Cancellation;

constexpr int spatialDepth = 8; ///< bits per sample of the output

/// Does something with the input; of what fails there, the error names the file.
template <typename Action> auto reading(const std::filesystem::path &input, const Action &action) {
    try {
        return action();
    } catch (const media::MediaError &error) {
        throw processorError(
            withCause(words("error.photo.cannot.open.format", lastPathComponent(input)), causeOf(error)));
    }
}

bool possible(const EyeSize &eye) {
    constexpr std::int64_t largest = std::numeric_limits<int>::max();
    return eye.width > 0 && eye.height > 0 && eye.width <= largest && eye.height <= largest;
}

media::Picture emptyEye(int width, int height, const media::Picture &source) {
    try {
        return media::makePicture(width, height, source.format, source.colour);
    } catch (const std::length_error &error) {
        throw processorError(withCause(words("error.photo.render.eyes.failed"), causeOf(error)));
    }
}

/// One eye of the source, scaled to its size. Without scaling it is a view into the source's picture.
media::Picture fittedEye(const media::Picture &source, const media::Placement &placement, bool unscaled,
                         const EyeSize &size, const Cancellation &cancellation) {
    const int x = static_cast<int>(placement.source.x);
    const int y = static_cast<int>(placement.source.y);
    const int width = static_cast<int>(size.width);
    const int height = static_cast<int>(size.height);
    const bool betweenChroma =
        source.format.model == media::ColourModel::yuv &&
        (x % (1 << source.format.chromaShiftX) != 0 || y % (1 << source.format.chromaShiftY) != 0);
    if (unscaled && !betweenChroma)
        return media::cropped(source, x, y, width, height);
    media::Picture eye = emptyEye(width, height, source);
    if (!unscaled)
        media::Compositor::fillBlack(eye);
    media::Compositor(cancellation).place(source, placement, eye);
    return eye;
}

using Eyes = media::EyePair<media::Picture>;

/// An eye in sRGB, without transparency.
media::Picture opaqueEye(media::Picture eye, const std::vector<std::uint8_t> &profile,
                         const std::filesystem::path &input, const Cancellation &cancellation) {
    try {
        return media::inSRGB(std::move(eye), profile, input, cancellation);
    } catch (const std::length_error &error) {
        throw processorError(withCause(words("error.photo.remove.alpha.failed"), causeOf(error)));
    } catch (const media::MediaError &error) {
        throw processorError(withCause(words("error.photo.remove.alpha.failed"), causeOf(error)));
    }
}

/// The pictures from which the eyes are cut: one that has both, or one for each eye.
struct Sources {
    media::StillImage first;
    std::optional<media::StillImage> second;

    const media::StillImage &last() const { return second ? *second : first; }
};

void requireSameSize(const media::Picture &left, const media::Picture &right) {
    if (left.width != right.width || left.height != right.height)
        throw processorError(
            words("error.eye.sizes.differ.format", left.width, left.height, right.width, right.height));
}

Sources readSources(const media::ImageFile &file, const StereoLayout &layout, const ConversionInput &input,
                    const MediaFacts &facts, const Cancellation &cancellation) {
    if (isInOnePicture(layout))
        return {file.read(cancellation), std::nullopt};
    if (layout.arrangement == EyeArrangement::twoStreams)
        throw processorError(words("error.no.second.stream"));
    Sources sources;
    if (layout.arrangement == EyeArrangement::twoFiles) {
        if (!input.rightEye)
            throw processorError(words("error.no.second.file"));
        sources.first = file.read(cancellation);
        sources.second = media::ImageFile(*input.rightEye).read(cancellation);
    } else {
        if (!facts.layout || facts.layout->arrangement != EyeArrangement::twoPictures)
            throw processorError(words("error.no.second.picture"));
        const auto take = [&sources](media::Eye eye, media::StillImage image) {
            if (eye == media::Eye::left)
                sources.first = std::move(image);
            else
                sources.second = std::move(image);
        };
        media::readEyePictures(file, take, cancellation);
    }
    requireSameSize(sources.first.picture, sources.last().picture);
    return sources;
}

/// Both eyes in sRGB. Each is prepared on its own thread.
Eyes renderedEyes(const ConversionSettings &settings, const StereoLayout &layout, const Sources &sources,
                  const std::filesystem::path &input, const Cancellation &cancellation) {
    const media::Picture &picture = sources.first.picture;
    const EyeCells cells = eyeCells(layout, picture.width, picture.height);
    const EyeSize size = eyeSize(settings, cells);
    if (!possible(size) || cells.shownWidth < 1 || cells.shownHeight < 1)
        throw processorError(withCause(words("error.photo.render.eyes.failed"), causeOfSize(size.width, size.height)));
    const EyeExtraction extraction = eyeExtraction(settings, size, cells);
    const auto render = [&](const media::StillImage &source, const media::Placement &placement) {
        return opaqueEye(fittedEye(source.picture, placement, extraction.unscaled, size, cancellation),
                         source.metadata.iccProfile, input, cancellation);
    };
    auto right = std::async(std::launch::async, [&] { return render(sources.last(), extraction.right); });
    media::Picture left = render(sources.first, extraction.left);
    Eyes eyes{std::move(left), right.get()};
    if (sources.second && settings.swapLeftRight != layout.rightEyeFirst)
        std::swap(eyes.left, eyes.right);
    return eyes;
}

void writePair(const StereoMetadata &values, Eyes eyes, const media::ImageMetadata &metadata,
               const media::OutputFile &output, const Cancellation &cancellation) {
    const media::SpatialPhotoFacts facts = spatialPhotoFacts(values, eyes.left.width, eyes.left.height);
    try {
        media::writeSpatialPhoto(output, std::move(eyes.left), std::move(eyes.right), facts, metadata, cancellation);
    } catch (const media::MediaError &error) {
        throw SpatialPhotoError::finalizationFailed(output.path(), causeOf(error));
    } catch (const std::invalid_argument &) { // larger than the format allows
        throw SpatialPhotoError::finalizationFailed(output.path(), words(keyOf(media::MediaReason::beyondFormat)));
    }
}

/// Returns warnings, and notes about what is not kept.
std::vector<Warning> convert(const ConversionSettings &settings, const ConversionInput &input,
                             const media::OutputFile &output, const Cancellation &cancellation) {
    const media::LargeBlockScope memory;
    const media::ImageFile file = reading(input.path(), [&] { return media::ImageFile(input); });
    const MediaFacts facts = lookClosely(input);
    const StereoLayout layout = sourceLayout(settings.inputLayout, facts);
    requireReadable(layout);
    std::optional<Sources> sources =
        reading(input.path(), [&] { return readSources(file, layout, input, facts, cancellation); });
    std::vector<Warning> warnings = layoutWarnings(layout, facts);
    if (const std::optional<Warning> note = stereoValuesNote(settings, facts))
        warnings.push_back(*note);
    if (facts.furtherPictures > 0)
        warnings.push_back({WarningKind::morePicturesLeft, {std::int64_t{facts.furtherPictures}}});
    std::ranges::move(photoNotes(file, sources->first.picture.format.depth, spatialDepth),
                      std::back_inserter(warnings));
    if (isHighDynamicRange(sources->first)) // it becomes sRGB
        warnings.push_back({WarningKind::standardRange, {}});
    const media::ImageMetadata metadata{{}, sources->first.metadata.exif, sources->first.metadata.xmp};
    Eyes eyes = renderedEyes(settings, layout, *sources, input.path(), cancellation);
    sources.reset();
    cancellation.check();
    writePair(stereoMetadata(settings, facts, input.disparityAdjustment), std::move(eyes), metadata, output,
              cancellation);
    return warnings;
}

} // namespace

Outcome convertSBSImageToSpatial(const ConversionSettings &settings, const ConversionInput &input,
                                 const media::OutputFile &output, const ConversionControl &control, SystemVersion) {
    const Cancellation cancellation([&control] { return control.cancelled(); });
    try {
        return Outcome::ofPhoto(convert(settings, input, output, cancellation));
    } catch (const media::Cancelled &) {
        return {};
    }
}

} // namespace lumetwin
