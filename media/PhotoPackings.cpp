// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/PhotoPackings.h"

#include "media/ImagePreview.h"
#include "media/MediaError.h"
#include "media/SpatialPhoto.h"
#include "media/bmff/BoxReader.h"
#include "media/jpeg/JpegHeaders.h"
#include "media/jpeg/JpegPreview.h"
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

[[noreturn]] void fail(const ImageFile &file, MediaReason reason, std::string details) {
    throw MediaError(file.path(), MediaOperation::read, 0, reason, std::move(details));
}

/// Where the first two eyes of a Multi-Picture file lie. Throws MediaError where they do not.
EyePair<images::ImagePlace> eyePlaces(const ImageFile &file) {
    images::MultiPicture pictures;
    if (file.kind() == ImageKind::jpeg)
        pictures = images::readMultiPicture(*bmff::openFile(file.input()));
    if (pictures.eyes.size() < 2)
        fail(file, MediaReason::noImage, "no second eye");
    const auto place = [&](std::size_t index) {
        const std::uint64_t begin = pictures.eyes[index];
        if (begin >= file.input().size())
            fail(file, MediaReason::endsEarly, "an eye lies beyond the end");
        return images::ImagePlace{begin, endOf(begin, pictures.all)};
    };
    if (pictures.eyes[0] == pictures.eyes[1])
        fail(file, MediaReason::damaged, "both eyes are at one place");
    return {place(0), place(1)};
}

/// Reads both eyes at the same time. Throws MediaError when their sizes differ.
template <typename Read> auto readBoth(const ImageFile &file, const Read &read) {
    const EyePair<images::ImagePlace> places = eyePlaces(file);
    auto later = std::async(std::launch::async, [&] { return read(places.right); });
    auto left = read(places.left);
    return EyePair<decltype(left)>{std::move(left), later.get()};
}

void requireOneSize(const ImageFile &file, const PixelSize &left, const PixelSize &right) {
    const auto text = [](const PixelSize &size) {
        return std::to_string(size.width) + " x " + std::to_string(size.height);
    };
    if (left.width != right.width || left.height != right.height)
        fail(file, MediaReason::contradictoryParameters, text(left) + ", " + text(right));
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
    EyePair<StillImage> eyes = readBoth(file, [&](const images::ImagePlace &place) {
        return images::readJpeg(file.input(), place.begin, place.end, cancellation);
    });
    requireOneSize(file, {eyes.left.picture.width, eyes.left.picture.height},
                   {eyes.right.picture.width, eyes.right.picture.height});
    take(Eye::left, std::move(eyes.left));
    take(Eye::right, std::move(eyes.right));
}

EyePair<ReducedImage> readReducedEyes(const ImageFile &file, const NeededSize &needed) {
    EyePair<ReducedImage> eyes = readBoth(file, [&](const images::ImagePlace &place) {
        if (auto reduced = images::readReducedJpeg(file.input(), place, needed))
            return std::move(*reduced);
        ReducedImage whole{images::readJpeg(file.input(), place.begin, place.end, {}), {}, 1};
        whole.whole = {whole.image.picture.width, whole.image.picture.height};
        return whole;
    });
    requireOneSize(file, eyes.left.whole, eyes.right.whole);
    return eyes;
}

} // namespace lumetwin::media
