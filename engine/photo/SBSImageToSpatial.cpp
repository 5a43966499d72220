// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/photo/SBSImageToSpatial.h"

#include "engine/photo/PhotoNotes.h"
#include "engine/photo/SpatialPhotoError.h"
#include "engine/photo/SpatialPhotoMetadata.h"
#include "engine/stereo/EyeExtraction.h"
#include "engine/texts/FileNames.h"
#include "engine/texts/MediaErrorTexts.h"
#include "engine/texts/ProcessorError.h"
#include "media/Compositor.h"
#include "media/EyePair.h"
#include "media/Image.h"
#include "media/Memory.h"
#include "media/SRGB.h"

#include <future>
#include <limits>
#include <stdexcept>

namespace lumetwin {

namespace {

using media::Cancellation;

constexpr int spatialDepth = 8; ///< bits per sample of the output

/// Does something with the input; of what fails there, the error names the file.
template <typename Action> auto reading(const media::InputFile &input, const Action &action) {
    try {
        return action();
    } catch (const media::MediaError &error) {
        throw processorError(
            withCause(words("error.photo.cannot.open.format", lastPathComponent(input.path())), causeOf(error)));
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
    const int width = static_cast<int>(size.width);
    const int height = static_cast<int>(size.height);
    const bool betweenChroma =
        source.format.model == media::ColourModel::yuv && x % (1 << source.format.chromaShiftX) != 0;
    if (unscaled && !betweenChroma)
        return media::cropped(source, x, 0, width, height);
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

/// Both eyes in sRGB. Each is prepared on its own thread.
Eyes renderedEyes(const ConversionSettings &settings, media::StillImage source, const std::filesystem::path &input,
                  const Cancellation &cancellation) {
    const EyeSize size = eyeSize(settings, source.picture.width, source.picture.height);
    if (!possible(size) || source.picture.width < 2)
        throw processorError(withCause(words("error.photo.render.eyes.failed"), causeOfSize(size.width, size.height)));
    const EyeExtraction extraction = eyeExtraction(settings, size, source.picture.width, source.picture.height);
    const auto render = [&](const media::Placement &placement) {
        return opaqueEye(fittedEye(source.picture, placement, extraction.unscaled, size, cancellation),
                         source.metadata.iccProfile, input, cancellation);
    };
    auto right = std::async(std::launch::async, render, extraction.right);
    media::Picture left = render(extraction.left);
    return {std::move(left), right.get()};
}

void writePair(const ConversionSettings &settings, Eyes eyes, const media::ImageMetadata &metadata,
               const media::OutputFile &output, const Cancellation &cancellation) {
    const media::SpatialPhotoFacts facts = spatialPhotoFacts(settings, eyes.left.width, eyes.left.height);
    try {
        media::writeSpatialPhoto(output, std::move(eyes.left), std::move(eyes.right), facts, metadata, cancellation);
    } catch (const media::MediaError &error) {
        throw SpatialPhotoError::finalizationFailed(output.path(), causeOf(error));
    } catch (const std::invalid_argument &) { // larger than the format allows
        throw SpatialPhotoError::finalizationFailed(output.path(), words(keyOf(media::MediaReason::beyondFormat)));
    }
}

/// Returns notes about what is not kept.
std::vector<Warning> convert(const ConversionSettings &settings, const media::InputFile &input,
                             const media::OutputFile &output, const Cancellation &cancellation) {
    const media::LargeBlockScope memory;
    const media::ImageFile file = reading(input, [&] { return media::ImageFile(input); });
    media::StillImage source = reading(input, [&] { return file.read(cancellation); });
    std::vector<Warning> notes = photoNotes(file, source.picture.format.depth, spatialDepth);
    const media::ImageMetadata metadata{{}, source.metadata.exif, source.metadata.xmp};
    Eyes eyes = renderedEyes(settings, std::move(source), input.path(), cancellation);
    cancellation.check();
    writePair(settings, std::move(eyes), metadata, output, cancellation);
    return notes;
}

} // namespace

Outcome convertSBSImageToSpatial(const ConversionSettings &settings, const media::InputFile &input,
                                 const media::OutputFile &output, const ConversionControl &control, SystemVersion) {
    const Cancellation cancellation([&control] { return control.cancelled(); });
    try {
        return Outcome::ofPhoto(convert(settings, input, output, cancellation));
    } catch (const media::Cancelled &) {
        return {};
    }
}

} // namespace lumetwin
