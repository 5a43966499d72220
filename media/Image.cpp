// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/Image.h"

#include "media/MediaError.h"
#include "media/SpatialPhoto.h"
#include "media/colour/PictureFor.h"
#include "media/heif/HeifOutput.h"
#include "media/heif/HeifReader.h"
#include "media/jpeg/JpegExtras.h"
#include "media/jpeg/JpegHeaders.h"
#include "media/jpeg/JpegReader.h"
#include "media/jpeg/JpegWriter.h"
#include "media/metadata/CorrectedMetadata.h"
#include "media/png/PngHeaders.h"
#include "media/png/PngReader.h"
#include "media/png/PngWriter.h"
#include "media/samples/Limits.h"
#include "media/tiff/TiffReader.h"
#include "media/tiff/TiffWriter.h"

#include <algorithm>
#include <array>
#include <future>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace lumetwin::media {

namespace {

using namespace std::string_view_literals;

/// Brands of still images in HEVC, the general brands used with them (ISO/IEC 23008-12, annex B), and brands of other
/// codings, for which the reader reports that they are not supported.
constexpr std::array heifBrands{"avci"sv, "avcs"sv, "avif"sv, "avis"sv, "j2ki"sv, "j2is"sv,
                                "heic"sv, "heix"sv, "heim"sv, "heis"sv, "mif1"sv, "mif2"sv,
                                "msf1"sv, "hevc"sv, "hevx"sv, "miaf"sv, "1pic"sv};

bool isHeif(std::string_view head) {
    if (head.size() < 12 || head.substr(4, 4) != "ftyp"sv)
        return false;
    const std::size_t size = static_cast<std::uint8_t>(head[2]) * 256u + static_cast<std::uint8_t>(head[3]);
    for (std::size_t at = 8; at + 4 <= std::min(size, head.size()); at += at == 8 ? 8 : 4)
        for (const std::string_view brand : heifBrands)
            if (head.substr(at, 4) == brand)
                return true;
    return false;
}

ImageKind requireKind(const InputFile &file) {
    if (const auto kind = imageKind(file))
        return *kind;
    throw MediaError(file.path(), MediaOperation::read, 0,
                     file.size() == 0 ? MediaReason::emptyFile : MediaReason::unknownImageKind);
}

PixelSize statedSize(const std::filesystem::path &file, const images::StillHeaders &headers) {
    if (headers.width < 1 || headers.height < 1)
        throw MediaError(file, MediaOperation::read, 0, MediaReason::damaged);
    images::checkSize(file, headers.width, headers.height);
    return {headers.width, headers.height};
}

} // namespace

std::optional<ImageKind> imageKind(const InputFile &file) noexcept {
    try {
        std::array<std::uint8_t, 256> bytes{};
        const std::size_t count = file.readAt(0, bytes);
        const std::string_view head(reinterpret_cast<const char *>(bytes.data()), count);
        if (head.starts_with("\xFF\xD8\xFF"sv))
            return ImageKind::jpeg;
        if (head.starts_with("\x89PNG\r\n\x1A\n"sv))
            return ImageKind::png;
        for (const std::string_view mark : {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv})
            if (head.starts_with(mark))
                return ImageKind::tiff;
        if (isHeif(head))
            return ImageKind::heif;
    } catch (const MediaError &) {
    }
    return std::nullopt;
}

struct ImageFile::Opened {
    explicit Opened(const InputFile &input) : file(input), kind(requireKind(input)) {
        if (kind == ImageKind::heif)
            heif.emplace(input);
    }

    InputFile file;
    ImageKind kind;
    std::optional<heif::HeifReader> heif;
};

ImageFile::ImageFile(const InputFile &file) : opened_(std::make_shared<const Opened>(file)) {}

const InputFile &ImageFile::input() const {
    return opened_->file;
}

const std::filesystem::path &ImageFile::path() const {
    return opened_->file.path();
}

ImageKind ImageFile::kind() const {
    return opened_->kind;
}

int ImageFile::imageCount() const {
    if (opened_->heif)
        return static_cast<int>(opened_->heif->headers().images.size());
    return kind() == ImageKind::tiff ? images::tiffPageCount(opened_->file) : 1;
}

PixelSize ImageFile::size() const {
    switch (kind()) {
    case ImageKind::jpeg:
        return statedSize(path(), images::readJpegHeaders(*bmff::openFile(opened_->file)));
    case ImageKind::png:
        return statedSize(path(), images::readPngHeaders(*bmff::openFile(opened_->file)));
    case ImageKind::tiff:
        return images::tiffSize(opened_->file);
    case ImageKind::heif:
        break;
    }
    return opened_->heif->firstSize();
}

PhotoExtras ImageFile::extras() const noexcept {
    try {
        if (opened_->heif) {
            const HeifFile &headers = opened_->heif->headers();
            return {headers.hasGainMap, headers.hasDepthMap, headers.hasMovie};
        }
        if (kind() == ImageKind::jpeg)
            return images::jpegExtras(*bmff::openFile(opened_->file));
    } catch (const std::exception &) {
        return {};
    }
    return {};
}

StillImage ImageFile::read(const Cancellation &cancellation) const {
    switch (kind()) {
    case ImageKind::jpeg:
        return images::readJpeg(opened_->file, cancellation);
    case ImageKind::png:
        return images::readPng(opened_->file, cancellation);
    case ImageKind::tiff:
        return images::readTiff(opened_->file, cancellation);
    case ImageKind::heif:
        break;
    }
    return opened_->heif->readFirst(cancellation);
}

StereoPhotoFacts stereoPhotoFacts(const ImageFile &file) {
    return file.opened_->heif ? file.opened_->heif->stereoFacts() : StereoPhotoFacts{};
}

StillImage readSpatialPhotoEye(const ImageFile &file, Eye eye, PhotoSamples samples, const Cancellation &cancellation) {
    const auto eyes = file.opened_->heif ? file.opened_->heif->headers().stereoEyes() : std::nullopt;
    if (!eyes)
        throw std::logic_error("a photo without a stereo pair");
    return file.opened_->heif->read(eye == Eye::left ? eyes->left : eyes->right, samples, cancellation);
}

void readSpatialPhoto(const ImageFile &file, PhotoSamples samples, const EyeTaker &take,
                      const Cancellation &cancellation) {
    const auto read = [&](Eye eye) { return readSpatialPhotoEye(file, eye, samples, cancellation); };
    if (samples == PhotoSamples::rgb) {
        take(Eye::left, read(Eye::left));
        take(Eye::right, read(Eye::right));
        return;
    }
    auto later = std::async(std::launch::async, read, Eye::right);
    StillImage left = read(Eye::left);
    StillImage right = later.get();
    take(Eye::left, std::move(left));
    take(Eye::right, std::move(right));
}

void writeImage(const OutputFile &file, ImageKind kind, StillImage image, double quality,
                const Cancellation &cancellation, const std::optional<StereoPacking> &packing) {
    // The embedded profile depends on the meaning of the samples before they are converted.
    image.metadata = images::correctedMetadata(image.picture, std::move(image.metadata));
    if (kind != ImageKind::jpeg) // the JPEG writer converts strip by strip
        image.picture = images::pictureFor(kind, std::move(image.picture), cancellation);
    switch (kind) {
    case ImageKind::jpeg:
        images::writeJpeg(file, image, quality, packing, cancellation);
        break;
    case ImageKind::png:
        images::writePng(file, image, cancellation);
        break;
    case ImageKind::tiff:
        images::writeTiff(file, image, cancellation);
        break;
    case ImageKind::heif:
        images::writeHeif(file, std::move(image), quality, cancellation);
        break;
    }
    cancellation.check();
}

} // namespace lumetwin::media
