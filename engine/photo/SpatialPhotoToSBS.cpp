// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/photo/SpatialPhotoToSBS.h"

#include "engine/batch/FileNames.h"
#include "engine/batch/MediaKinds.h"
#include "engine/geometry/SBSGeometry.h"
#include "engine/photo/PhotoNotes.h"
#include "engine/photo/SpatialPhotoError.h"
#include "engine/stereo/StereoPair.h"
#include "engine/texts/MediaErrorTexts.h"
#include "engine/texts/ProcessorError.h"
#include "media/ColourConversion.h"
#include "media/Compositor.h"
#include "media/Image.h"
#include "media/Memory.h"
#include "media/SpatialPhoto.h"

#include <future>
#include <limits>
#include <stdexcept>

namespace lumetwin {

namespace {

using media::Cancellation;
using media::HeifSamples;
using media::ImageKind;
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

/// The most bits a sample that files of the kind hold.
int depthOf(ImageKind kind) {
    return kind == ImageKind::png || kind == ImageKind::tiff ? 16 : 8;
}

/// One eye of the pair. Throws SpatialPhotoError when it cannot be decoded.
StillImage decodedEye(const std::filesystem::path &file, std::uint32_t item, HeifSamples samples,
                      const Cancellation &cancellation) {
    try {
        return media::readHeifImage(file, item, samples, cancellation);
    } catch (const media::MediaError &error) {
        throw SpatialPhotoError::imageExtractionFailed(causeOf(error));
    }
}

media::Picture canvasFor(const SBSGeometry &geometry, const media::Picture &eye) {
    constexpr std::int64_t largest = std::numeric_limits<int>::max();
    if (geometry.outW < 1 || geometry.outH < 1 || geometry.outW > largest || geometry.outH > largest)
        throw processorError(because(words("error.photo.render.failed"), causeOfSize(geometry.outW, geometry.outH)));
    try {
        return media::makePicture(static_cast<int>(geometry.outW), static_cast<int>(geometry.outH), eye.format,
                                  eye.colour);
    } catch (const std::length_error &error) {
        throw processorError(because(words("error.photo.render.failed"), causeOf(error)));
    }
}

/// Composes one side-by-side picture of eyes that come one after the other or both at once.
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

/// Both eyes are decoded at once; their samples stay as they are coded.
StillImage composedAsCoded(const ConversionSettings &settings, const std::filesystem::path &file,
                           const StereoPair &pair, const Cancellation &cancellation) {
    auto later =
        std::async(std::launch::async, [&] { return decodedEye(file, pair.right, HeifSamples::coded, cancellation); });
    StillImage left = decodedEye(file, pair.left, HeifSamples::coded, cancellation);
    StillImage right = later.get();
    Composer composer(settings, cancellation);
    composer.begin(left.picture);
    composer.place(std::move(left.picture), true);
    composer.place(std::move(right.picture), false);
    return {composer.finish(), std::move(left.metadata)};
}

/// The eyes are decoded one after the other: as RGB they take much memory.
StillImage composedAsRgb(const ConversionSettings &settings, const std::filesystem::path &file, const StereoPair &pair,
                         const Cancellation &cancellation) {
    Composer composer(settings, cancellation);
    StillImage left = decodedEye(file, pair.left, HeifSamples::rgb, cancellation);
    composer.begin(left.picture);
    composer.place(std::move(left.picture), true);
    left.picture = {};
    composer.place(decodedEye(file, pair.right, HeifSamples::rgb, cancellation).picture, false);
    return {composer.finish(), std::move(left.metadata)};
}

/// As the output's format takes it. Gives back the memory that decoding took before coding takes its own.
StillImage composedImage(const ConversionSettings &settings, const std::filesystem::path &file, const StereoPair &pair,
                         ImageKind kind, const Cancellation &cancellation) {
    const media::LargeBlockScope memory;
    const bool asRgb = kind == ImageKind::png || kind == ImageKind::tiff;
    return asRgb ? composedAsRgb(settings, file, pair, cancellation)
                 : composedAsCoded(settings, file, pair, cancellation);
}

void writeSBSImage(const ConversionSettings &settings, StillImage image, ImageKind kind,
                   const std::filesystem::path &output, const Cancellation &cancellation) {
    const media::LargeBlockScope memory;
    try {
        media::requireWritable(output);
    } catch (const media::MediaError &error) {
        throw processorError(
            because(words("error.photo.no.destination.format", lastPathComponent(output)), causeOf(error)));
    }
    const Words failed = words("error.photo.write.failed.format", lastPathComponent(output));
    try {
        media::writeImage(output, kind, std::move(image), settings.compressionQuality, cancellation);
    } catch (const media::MediaError &error) {
        throw processorError(because(failed, causeOf(error)));
    } catch (const std::invalid_argument &) { // more than the format holds
        throw processorError(because(failed, words(keyOf(media::MediaReason::beyondFormat))));
    }
}

} // namespace

Outcome convertSpatialPhotoToSBS(const ConversionSettings &settings, const std::filesystem::path &input,
                                 const std::filesystem::path &output, const ConversionControl &control) {
    const Cancellation cancellation([&control] { return control.cancelled(); });
    const StereoPair pair = readStereoPair(input);
    const ImageKind kind = kindOf(output);
    try {
        StillImage image = composedImage(settings, input, pair, kind, cancellation);
        cancellation.check();
        std::vector<Warning> notes = photoNotes(input, image.picture.format.depth, depthOf(kind));
        writeSBSImage(settings, std::move(image), kind, output, cancellation);
        return Outcome::ofPhoto(std::move(notes));
    } catch (const media::Cancelled &) {
        return {};
    }
}

} // namespace lumetwin
