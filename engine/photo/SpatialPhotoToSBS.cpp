// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/photo/SpatialPhotoToSBS.h"

#include "engine/geometry/SBSGeometry.h"
#include "engine/inspection/MediaKinds.h"
#include "engine/photo/PhotoNotes.h"
#include "engine/photo/SpatialPhotoError.h"
#include "engine/texts/FileNames.h"
#include "engine/texts/MediaErrorTexts.h"
#include "engine/texts/ProcessorError.h"
#include "media/ColourConversion.h"
#include "media/Compositor.h"
#include "media/Image.h"
#include "media/Memory.h"
#include "media/SpatialPhoto.h"
#include "media/StandardRange.h"

#include <limits>
#include <optional>
#include <stdexcept>

namespace lumetwin {

namespace {

using media::Cancellation;
using media::ImageKind;
using media::PhotoSamples;
using media::StillImage;

ImageKind kindOf(const std::filesystem::path &output) {
    const std::string extension = lowerCasedExtension(output);
    if (extension == "png")
        return ImageKind::png;
    if (extension == "tiff" || extension == "tif")
        return ImageKind::tiff;
    if (extension == "heic")
        return ImageKind::heif;
    return ImageKind::jpeg;
}

/// The maximum number of bits per sample of a file format.
int depthOf(ImageKind kind) {
    return kind == ImageKind::png || kind == ImageKind::tiff ? 16 : 8;
}

/// Opens a photo with a stereo pair. Throws SpatialPhotoError for any other.
media::ImageFile openedPair(const media::InputFile &input) {
    std::optional<media::ImageFile> photo;
    std::size_t count = 0;
    try {
        photo.emplace(input);
        count = static_cast<std::size_t>(photo->imageCount());
    } catch (const media::MediaError &error) {
        throw SpatialPhotoError::cannotOpenFile(input.path(), causeOf(error));
    }
    if (count < 2)
        throw SpatialPhotoError::notASpatialPhoto(SpatialPhotoError::tooFewImages(count));
    if (!media::stereoPhotoFacts(*photo).hasBothEyes)
        throw SpatialPhotoError::notASpatialPhoto(SpatialPhotoError::noStereoGroup());
    return *photo;
}

media::Picture canvasFor(const SBSGeometry &geometry, const media::Picture &eye) {
    constexpr std::int64_t largest = std::numeric_limits<int>::max();
    if (geometry.outW < 1 || geometry.outH < 1 || geometry.outW > largest || geometry.outH > largest)
        throw processorError(withCause(words("error.photo.render.failed"), causeOfSize(geometry.outW, geometry.outH)));
    try {
        return media::makePicture(static_cast<int>(geometry.outW), static_cast<int>(geometry.outH), eye.format,
                                  eye.colour);
    } catch (const std::length_error &error) {
        throw processorError(withCause(words("error.photo.render.failed"), causeOf(error)));
    }
}

/// Composes a side-by-side picture from two eyes, which are given one after the other or together.
class Composer {
public:
    Composer(const ConversionSettings &settings, const Cancellation &cancellation)
        : settings_(settings), cancellation_(cancellation), compositor_(cancellation) {}

    void begin(const media::Picture &leftEye) {
        width_ = leftEye.width;
        height_ = leftEye.height;
        format_ = leftEye.format;
        geometry_ = sbsGeometry(settings_, width_, height_);
        canvas_ = canvasFor(geometry_, leftEye);
        if (!geometry_.coversFrame())
            media::Compositor::fillBlack(canvas_);
    }

    void place(media::Picture eye, bool isLeftEye) {
        if (eye.width != width_ || eye.height != height_)
            throw processorError(words("error.photo.sizes.differ"));
        if (eye.format.model != format_.model || eye.colour.matrix != canvas_.colour.matrix ||
            eye.colour.range != canvas_.colour.range)
            eye = media::convertColour(eye, format_, canvas_.colour, cancellation_);
        const bool leftHalf = isLeftEye != settings_.swapLeftRight;
        compositor_.place(eye, leftHalf ? geometry_.leftHalf(eye) : geometry_.rightHalf(eye), canvas_);
    }

    media::Picture finish() { return std::move(canvas_); }

private:
    const ConversionSettings &settings_;
    const Cancellation &cancellation_;
    int width_ = 0;
    int height_ = 0;
    media::PictureFormat format_;
    SBSGeometry geometry_;
    media::Picture canvas_;
    media::Compositor compositor_;
};

/// The two eyes side by side, in samples that the output format supports, with the left eye's metadata. The memory of
/// decoding is released before encoding starts.
StillImage composedImage(const ConversionSettings &settings, const media::ImageFile &photo, ImageKind kind,
                         const Cancellation &cancellation) {
    const media::LargeBlockScope memory;
    const bool asRgb = kind == ImageKind::png || kind == ImageKind::tiff;
    Composer composer(settings, cancellation);
    media::ImageMetadata metadata;
    const auto take = [&](media::Eye eye, StillImage image) {
        const bool isLeft = eye == media::Eye::left;
        if (isLeft) {
            metadata = std::move(image.metadata);
            composer.begin(image.picture);
        }
        composer.place(std::move(image.picture), isLeft);
    };
    try {
        media::readSpatialPhoto(photo, asRgb ? PhotoSamples::rgb : PhotoSamples::coded, take, cancellation);
    } catch (const media::MediaError &error) {
        throw SpatialPhotoError::imageExtractionFailed(causeOf(error));
    }
    return {composer.finish(), std::move(metadata)};
}

/// How the eyes lie in the composed picture.
media::StereoPacking packingOf(const ConversionSettings &settings) {
    return {media::StereoPacking::Arrangement::sideBySide, settings.swapLeftRight, settings.halfWidth};
}

void writeSBSImage(const ConversionSettings &settings, StillImage image, ImageKind kind,
                   const media::OutputFile &output, const Cancellation &cancellation) {
    const media::LargeBlockScope memory;
    const Words failed = words("error.photo.write.failed.format", lastPathComponent(output.path()));
    try {
        media::writeImage(output, kind, std::move(image), settings.compressionQuality, cancellation,
                          packingOf(settings));
    } catch (const media::MediaError &error) {
        throw processorError(withCause(failed, causeOf(error)));
    } catch (const std::invalid_argument &) { // larger than the format allows
        throw processorError(withCause(failed, words(keyOf(media::MediaReason::beyondFormat))));
    }
}

} // namespace

Outcome convertSpatialPhotoToSBS(const ConversionSettings &settings, const ConversionInput &input,
                                 const media::OutputFile &output, const ConversionControl &control, SystemVersion) {
    const Cancellation cancellation([&control] { return control.cancelled(); });
    const media::ImageFile photo = openedPair(input);
    const ImageKind kind = kindOf(output.path());
    try {
        StillImage image = composedImage(settings, photo, kind, cancellation);
        cancellation.check();
        std::vector<Warning> notes = photoNotes(photo, image.picture.format.depth, depthOf(kind));
        // Viewers of JPEG know nothing of it.
        if (kind == ImageKind::jpeg && isHighDynamicRange(image)) {
            image.picture = media::StandardRange::ofPhoto(std::move(image.picture), cancellation);
            notes.push_back({WarningKind::standardRange, {}});
        }
        writeSBSImage(settings, std::move(image), kind, output, cancellation);
        return Outcome::ofPhoto(std::move(notes));
    } catch (const media::Cancelled &) {
        return {};
    }
}

} // namespace lumetwin
