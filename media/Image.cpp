// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/Image.h"

#include "media/ColourConversion.h"
#include "media/HeifFile.h"
#include "media/MediaError.h"
#include "media/PartialFile.h"
#include "media/colour/ColourProfile.h"
#include "media/heif/HeifOutput.h"
#include "media/metadata/ExifBlock.h"
#include "media/metadata/Xmp.h"
#include "media/samples/Formats.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <string_view>

namespace lumetwin::media {

namespace {

using namespace std::string_view_literals;

/// Brands of still images in HEVC, the general ones that they come with (ISO/IEC 23008-12, annex B), and those of other
/// codings, of which the reader says that it does not read them.
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

ImageKind requireKind(const std::filesystem::path &file) {
    if (const auto kind = imageKind(file))
        return *kind;
    std::error_code ignored;
    if (std::filesystem::is_directory(file, ignored))
        throw MediaError::ofSystem(file, MediaOperation::open, EISDIR);
    images::openForReading(file); // says why, where it cannot be opened
    const bool empty = std::filesystem::is_empty(file, ignored);
    throw MediaError(file, MediaOperation::read, 0, empty ? MediaReason::emptyFile : MediaReason::unknownImageKind);
}

/// Code points 5 and 6 of ITU-T H.273 name the same matrix.
bool isBT601(int one, int other) {
    return one >= 5 && one <= 6 && other >= 5 && other <= 6;
}

} // namespace

namespace images {

ImageMetadata correctedMetadata(const Picture &picture, ImageMetadata metadata) {
    ExifBlock exif = ExifBlock::parse(metadata.exif);
    metadata.exif.clear();
    if (!exif.empty()) {
        exif.describePicture(picture.width, picture.height);
        if (metadata.iccProfile.empty() && picture.colour.primaries == jpegColour.primaries)
            exif.describeSRGB();
        metadata.exif = exif.bytes();
    }
    metadata.xmp = correctedXmp(std::move(metadata.xmp), picture.width, picture.height);
    if (metadata.iccProfile.empty() && picture.format.model != ColourModel::grey)
        metadata.iccProfile = profileOf(picture.colour);
    return metadata;
}

Picture fitted(Picture picture, ImageKind kind, const Cancellation &cancellation) {
    PictureFormat format = picture.format;
    ColourTags colour = picture.colour;
    const bool isYuv = format.model == ColourModel::yuv;
    if (kind == ImageKind::jpeg) {
        format.depth = 8;
        if (isYuv) {
            format.chromaShiftX = std::min(format.chromaShiftX, 1);
            colour.matrix = jpegColour.matrix;
            colour.range = jpegColour.range;
        }
    } else if (kind == ImageKind::heif) {
        format = yuv420;
        if (!isYuv) {
            colour.matrix = jpegColour.matrix;
            colour.range = jpegColour.range;
            colour.chromaLocation = jpegColour.chromaLocation;
        }
    } else if (isYuv) {
        format = {ColourModel::rgb, format.depth, 0, 0};
        colour.matrix = 0;
        colour.range = ColourRange::full;
    }
    const bool sameMatrix = colour.matrix == picture.colour.matrix || isBT601(colour.matrix, picture.colour.matrix);
    if (format == picture.format && sameMatrix && colour.range == picture.colour.range) {
        picture.colour = colour;
        return picture;
    }
    return convertColour(picture, format, colour, cancellation);
}

} // namespace images

std::optional<ImageKind> imageKind(const std::filesystem::path &file) noexcept {
    try {
        if (!std::filesystem::is_regular_file(file))
            return std::nullopt; // a pipe that nobody writes to would be waited for
        std::ifstream stream(file, std::ios::binary);
        std::array<char, 256> bytes{};
        stream.read(bytes.data(), bytes.size());
        const std::string_view head(bytes.data(), static_cast<std::size_t>(stream.gcount()));
        if (head.starts_with("\xFF\xD8\xFF"sv))
            return ImageKind::jpeg;
        if (head.starts_with("\x89PNG\r\n\x1A\n"sv))
            return ImageKind::png;
        for (const std::string_view mark : {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv})
            if (head.starts_with(mark))
                return ImageKind::tiff;
        if (isHeif(head))
            return ImageKind::heif;
    } catch (const std::exception &) {
    }
    return std::nullopt;
}

int imageCount(const std::filesystem::path &file) {
    switch (requireKind(file)) {
    case ImageKind::tiff:
        return images::tiffPageCount(file);
    case ImageKind::heif:
        return static_cast<int>(readHeifFile(file).images.size());
    case ImageKind::jpeg:
    case ImageKind::png:
        break;
    }
    return 1;
}

StillImage readImage(const std::filesystem::path &file, const Cancellation &cancellation) {
    switch (requireKind(file)) {
    case ImageKind::jpeg:
        return images::readJpeg(file, cancellation);
    case ImageKind::png:
        return images::readPng(file, cancellation);
    case ImageKind::tiff:
        return images::readTiff(file, cancellation);
    case ImageKind::heif:
        break;
    }
    return images::readHeif(file, cancellation);
}

namespace {

void writeAs(ImageKind kind, const PartialFile &partial, StillImage image, double quality,
             const Cancellation &cancellation) {
    switch (kind) {
    case ImageKind::jpeg:
        return images::writeJpeg(partial.path(), image, quality, cancellation);
    case ImageKind::png:
        return images::writePng(partial.path(), image, cancellation);
    case ImageKind::tiff:
        return images::writeTiff(partial.path(), image, cancellation);
    case ImageKind::heif:
        return images::writeHeif(partial, std::move(image), quality, cancellation);
    }
}

} // namespace

void writeImage(const std::filesystem::path &file, ImageKind kind, StillImage image, double quality,
                const Cancellation &cancellation) {
    const PartialFile partial(file);
    try {
        // What the samples meant before they are converted decides which profile is embedded.
        image.metadata = images::correctedMetadata(image.picture, std::move(image.metadata));
        if (kind != ImageKind::jpeg) // whose writer converts strip by strip
            image.picture = images::fitted(std::move(image.picture), kind, cancellation);
        writeAs(kind, partial, std::move(image), quality, cancellation);
        cancellation.check();
        partial.finish();
    } catch (const Cancelled &) {
        partial.discard();
        throw;
    }
}

} // namespace lumetwin::media
