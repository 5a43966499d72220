// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/PhotoPackings.h"

#include "media/MediaError.h"
#include "media/SpatialPhoto.h"
#include "media/bmff/BoxReader.h"
#include "media/jpeg/JpegHeaders.h"
#include "media/jpeg/JpegReader.h"
#include "media/jpeg/MultiPicture.h"
#include "media/metadata/FieldOfView.h"
#include "media/metadata/Xmp.h"
#include "media/png/PngHeaders.h"

#include <algorithm>
#include <cstdint>
#include <future>
#include <limits>
#include <utility>

namespace lumetwin::media {

namespace {

using Arrangement = StereoPacking::Arrangement;

images::StillHeaders headersOf(const bmff::Source &source, ImageKind kind) {
    switch (kind) {
    case ImageKind::jpeg:
        return images::readJpegHeaders(source);
    case ImageKind::png:
        return images::readPngHeaders(source);
    case ImageKind::tiff:
    case ImageKind::heif:
        break;
    }
    return {};
}

/// The shape of one eye of a picture that holds both.
std::pair<double, double> eyeShape(double width, double height, const StereoPacking &packing) {
    if (packing.arrangement == Arrangement::overUnder)
        return {width, packing.isHalf ? height : height / 2};
    return {packing.isHalf ? width : width / 2, height};
}

void describe(PhotoPackings &packings, const images::StillHeaders &headers) {
    const images::Panorama panorama = images::xmpPanorama(headers.xmp);
    packings.projection = panorama.projection;
    packings.packing = headers.packing ? headers.packing : panorama.packing;
    packings.baseline = headers.baseline;
}

/// The eyes are pictures of their own; what is said of packing can be true of neither.
void describe(PhotoPackings &packings, const images::MultiPicture &pictures) {
    packings.eyePictures = static_cast<int>(pictures.eyes.size());
    packings.otherPictures = pictures.others;
    if (packings.eyePictures < 2)
        return;
    packings.packing.reset();
    packings.convergence = pictures.convergence;
    if (pictures.baseline)
        packings.baseline = pictures.baseline;
}

/// The end of the picture that begins at a place: where the next one begins.
std::uint64_t endOf(std::uint64_t begin, const std::vector<std::uint64_t> &all) {
    std::uint64_t end = std::numeric_limits<std::uint64_t>::max();
    for (const std::uint64_t other : all)
        if (other > begin)
            end = std::min(end, other);
    return end;
}

std::string sizeOf(const Picture &picture) {
    return std::to_string(picture.width) + " x " + std::to_string(picture.height);
}

} // namespace

PhotoPackings readPhotoPackings(const InputFile &file) noexcept {
    PhotoPackings packings;
    try {
        const auto kind = imageKind(file);
        if (!kind)
            return packings;
        const auto source = bmff::openFile(file);
        const images::StillHeaders headers = headersOf(*source, *kind);
        describe(packings, headers);
        if (*kind == ImageKind::jpeg)
            describe(packings, images::readMultiPicture(*source));
        const auto [width, height] =
            packings.eyePictures >= 2
                ? std::pair<double, double>(headers.width, headers.height)
                : eyeShape(headers.width, headers.height, packings.packing.value_or(StereoPacking{}));
        packings.horizontalFieldOfView = images::horizontalFieldOfView(headers.exif, width, height);
    } catch (const std::exception &) {
        return packings;
    }
    return packings;
}

void readEyePictures(const ImageFile &file, const EyeTaker &take, const Cancellation &cancellation) {
    const auto fail = [&](MediaReason reason, std::string details) {
        throw MediaError(file.path(), MediaOperation::read, 0, reason, std::move(details));
    };
    images::MultiPicture pictures;
    if (file.kind() == ImageKind::jpeg)
        pictures = images::readMultiPicture(*bmff::openFile(file.input()));
    if (pictures.eyes.size() < 2)
        fail(MediaReason::noImage, "no second eye");
    const auto read = [&](std::size_t index) {
        const std::uint64_t begin = pictures.eyes[index];
        if (begin >= file.input().size())
            fail(MediaReason::endsEarly, "an eye lies beyond the end");
        return images::readJpeg(file.input(), begin, endOf(begin, pictures.all), cancellation);
    };
    if (pictures.eyes[0] == pictures.eyes[1])
        fail(MediaReason::damaged, "both eyes are at one place");
    auto later = std::async(std::launch::async, read, std::size_t{1});
    StillImage left = read(0);
    StillImage right = later.get();
    if (left.picture.width != right.picture.width || left.picture.height != right.picture.height)
        fail(MediaReason::contradictoryParameters, sizeOf(left.picture) + ", " + sizeOf(right.picture));
    take(Eye::left, std::move(left));
    take(Eye::right, std::move(right));
}

} // namespace lumetwin::media
