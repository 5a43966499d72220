// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/HeifOutput.h"

#include "media/MediaError.h"
#include "media/SpatialPhoto.h"
#include "media/colour/PictureFor.h"
#include "media/heif/HevcConfiguration.h"
#include "media/metadata/CorrectedMetadata.h"
#include "media/x265/StillEncoder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <future>
#include <thread>
#include <utility>

namespace lumetwin::media {

namespace images {

namespace {

constexpr int tileUnit = 64; // tile sizes should be a multiple of this (ISO/IEC 23000-22, 7.3.11.4.2)
// Larger tiles need less time and more memory. An eye has half the pixels of a side-by-side picture.
constexpr GridCoding eyeCoding{1, 2048};

/// How an image is divided into tiles of one size.
struct Tiling {
    int columns = 1;
    int rows = 1;
    int width = 0;
    int height = 0;

    int count() const { return columns * rows; }
};

int tileSize(int size, int count) {
    const int even = (size + count - 1) / count;
    return (even + tileUnit - 1) / tileUnit * tileUnit;
}

int tilesFor(int size, std::int64_t largest) {
    return static_cast<int>((size + largest - 1) / largest);
}

Tiling tilingOf(const Picture &picture, int longestSide) {
    if (std::max(picture.width, picture.height) <= x265::largestStillSide &&
        std::int64_t{picture.width} * picture.height <= x265::largestStillArea)
        return {1, 1, picture.width, picture.height};
    const int columns = tilesFor(picture.width, longestSide);
    const int width = tileSize(picture.width, columns);
    const std::int64_t highest = std::min<std::int64_t>(x265::largestStillArea / width, longestSide);
    const int rows = tilesFor(picture.height, highest / tileUnit * tileUnit);
    return {columns, rows, width, tileSize(picture.height, rows)};
}

/// A tile of full size. Outside the picture, the last column and row are repeated.
Picture tileOf(const Picture &picture, const Tiling &tiling, int column, int row) {
    const int x = column * tiling.width;
    const int y = row * tiling.height;
    const int width = std::min(tiling.width, picture.width - x);
    const int height = std::min(tiling.height, picture.height - y);
    Picture part = cropped(picture, x, y, width, height);
    if (width == tiling.width && height == tiling.height)
        return part;
    Picture whole = makePicture(tiling.width, tiling.height, picture.format, picture.colour);
    copyExtended(part, whole);
    return whole;
}

/// Two pictures (eyes or tiles) are encoded at the same time, each with half of the processors. More would need more
/// memory.
int threadsForEach() {
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()) / 2);
}

/// Encodes every n-th tile from the first one, so that several threads can share the work.
void codeTiles(const std::filesystem::path &file, const Picture &picture, const Tiling &tiling, int quantiser,
               int first, int step, std::vector<x265::CodedStill> &stills, const Cancellation &cancellation) {
    for (int index = first; index < tiling.count(); index += step) {
        cancellation.check();
        stills[static_cast<std::size_t>(index)] =
            x265::encodeStill(file, tileOf(picture, tiling, index % tiling.columns, index / tiling.columns), quantiser,
                              threadsForEach(), cancellation);
    }
}

std::vector<x265::CodedStill> codedTiles(const std::filesystem::path &file, Picture picture, const Tiling &tiling,
                                         int quantiser, int workers, const Cancellation &cancellation) {
    cancellation.check();
    std::vector<x265::CodedStill> stills(static_cast<std::size_t>(tiling.count()));
    if (tiling.count() == 1) {
        stills[0] = x265::encodeStill(file, std::move(picture), quantiser, threadsForEach(), cancellation);
        return stills;
    }
    std::vector<std::future<void>> others;
    for (int worker = 1; worker < workers; ++worker)
        others.push_back(std::async(std::launch::async, [&, worker] {
            codeTiles(file, picture, tiling, quantiser, worker, workers, stills, cancellation);
        }));
    codeTiles(file, picture, tiling, quantiser, 0, workers, stills, cancellation);
    for (std::future<void> &other : others)
        other.get();
    return stills;
}

void takeStill(const std::filesystem::path &file, x265::CodedStill still, heif::CodedImage &image) {
    heif::Bytes configuration = heif::hevcConfiguration(still.parameterSets);
    if (!image.configuration.empty() && image.configuration != configuration)
        throw MediaError(file, MediaOperation::encode, 0, MediaReason::encoderFailed);
    image.configuration = std::move(configuration);
    image.tileWidth = static_cast<std::uint32_t>(still.width);
    image.tileHeight = static_cast<std::uint32_t>(still.height);
    image.tiles.push_back(std::move(still.slices));
}

} // namespace

heif::CodedImage codedImage(const std::filesystem::path &file, Picture picture, const ImageMetadata &metadata,
                            int quantiser, GridCoding grid, const Cancellation &cancellation) {
    const Tiling tiling = tilingOf(picture, grid.longestTileSide);
    heif::CodedImage image;
    image.width = static_cast<std::uint32_t>(picture.width);
    image.height = static_cast<std::uint32_t>(picture.height);
    image.columns = static_cast<std::uint32_t>(tiling.columns);
    image.rows = static_cast<std::uint32_t>(tiling.rows);
    image.colourProfile = metadata.iccProfile;
    image.exif = metadata.exif;
    image.xmp = metadata.xmp;
    if (metadata.iccProfile.empty())
        image.colour = heif::HeifColour{picture.colour.primaries, picture.colour.transfer, picture.colour.matrix,
                                        picture.colour.range == ColourRange::full};
    for (x265::CodedStill &still : codedTiles(file, std::move(picture), tiling, quantiser, grid.workers, cancellation))
        takeStill(file, std::move(still), image);
    return image;
}

int heifQuantiser(double quality) {
    constexpr std::array<std::array<double, 2>, 5> points{{{0, 46}, {0.5, 31}, {0.75, 24}, {0.9, 18}, {1, 8}}};
    const double wanted = std::clamp(std::isnan(quality) ? 1.0 : quality, 0.0, 1.0);
    for (std::size_t i = 1; i < points.size(); ++i)
        if (wanted <= points[i][0]) {
            const double part = (wanted - points[i - 1][0]) / (points[i][0] - points[i - 1][0]);
            return static_cast<int>(std::lround(points[i - 1][1] + part * (points[i][1] - points[i - 1][1])));
        }
    return x265::finestQuantiser;
}

void writeHeif(const OutputFile &file, StillImage image, double quality, const Cancellation &cancellation) {
    heif::writeHeif(file, codedImage(file.path(), std::move(image.picture), image.metadata, heifQuantiser(quality), {},
                                     cancellation));
}

} // namespace images

namespace {

/// Fine enough that a spatial photo shows no visible difference from its source.
constexpr int spatialQuantiser = 14;

heif::CodedImage codedEye(const std::filesystem::path &file, Picture eye, const ImageMetadata &metadata,
                          const heif::Camera &camera, const Cancellation &cancellation) {
    const ImageMetadata corrected = images::correctedMetadata(eye, metadata);
    heif::CodedImage image = images::codedImage(file, images::pictureFor(ImageKind::heif, std::move(eye), cancellation),
                                                corrected, spatialQuantiser, images::eyeCoding, cancellation);
    image.camera = camera;
    return image;
}

} // namespace

void writeSpatialPhoto(const OutputFile &file, Picture left, Picture right, const SpatialPhotoFacts &facts,
                       const ImageMetadata &metadata, const Cancellation &cancellation) {
    const heif::Camera leftCamera{facts.focalLength, facts.principalPoint, {}};
    const heif::Camera rightCamera{facts.focalLength, facts.principalPoint, facts.rightPosition};
    auto later = std::async(std::launch::async, [&, eye = std::move(right)]() mutable {
        return codedEye(file.path(), std::move(eye), metadata, rightCamera, cancellation);
    });
    const heif::CodedImage leftImage = codedEye(file.path(), std::move(left), metadata, leftCamera, cancellation);
    const heif::CodedImage rightImage = later.get();
    cancellation.check();
    heif::writeStereoHeif(file, leftImage, rightImage, facts.disparityAdjustment);
}

} // namespace lumetwin::media
