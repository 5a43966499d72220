// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/jpeg/JpegWriter.h"

// A picture is divided into strips, which are converted and encoded in parallel. Each strip is a restart interval of
// the final file (ITU-T T.81, B.2).
#include "media/MediaError.h"
#include "media/colour/PictureFor.h"
#include "media/jpeg/JpegErrors.h"
#include "media/jpeg/JpegStrip.h"
#include "media/samples/FileStream.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <future>
#include <thread>

namespace lumetwin::media::images {

namespace {

constexpr std::uint8_t frameHeader = 0xc0; // baseline
constexpr std::uint8_t scanHeader = 0xda;
constexpr std::array<std::uint8_t, 2> endOfImage{0xff, 0xd9};
constexpr int highestStrip = 256;
constexpr int longestInterval = 65535; // units from one restart marker to the next

struct Strips {
    int rows = 0; ///< rows of each strip except the last
    int count = 1;
    unsigned interval = 0; ///< units of a strip; 0 when there is one strip
};

Strips stripsOf(const Picture &picture, int quality) {
    const JpegSize unit = jpegUnit(picture.format, quality);
    const int unitsAcross = (picture.width + unit.width - 1) / unit.width;
    const int unitsDown = std::min(highestStrip / unit.height, longestInterval / unitsAcross);
    const int rows = unitsDown * unit.height;
    const int count = (picture.height + rows - 1) / rows;
    return {rows, count, count > 1 ? static_cast<unsigned>(unitsAcross * unitsDown) : 0};
}

/// The number of rows around a strip that are converted with it: its colours depend on a few of them, and the dithering
/// pattern repeats every 16 rows of each plane.
int contextOf(const Picture &picture) {
    return picture.format.depth > 8 ? 32 : 16;
}

Picture fittedStrip(const Picture &picture, int first, int rows, const Cancellation &cancellation) {
    const int context = contextOf(picture);
    const int from = std::max(first - context, 0);
    const int to = std::min(first + rows + context, picture.height);
    const Picture surrounded =
        pictureFor(ImageKind::jpeg, cropped(picture, 0, from, picture.width, to - from), cancellation);
    return cropped(surrounded, 0, first - from, picture.width, std::min(rows, picture.height - first));
}

/// Encodes the strips as separate files, on one thread per processor.
std::vector<JpegBytes> codedStrips(const StillImage &image, const Strips &strips, int quality,
                                   const std::optional<StereoPacking> &packing, const std::filesystem::path &file,
                                   const Cancellation &cancellation) {
    std::vector<JpegBytes> coded(static_cast<std::size_t>(strips.count));
    std::atomic<int> next = 0;
    const auto work = [&] {
        for (int index = next++; index < strips.count; index = next++) {
            cancellation.check();
            coded[static_cast<std::size_t>(index)] = codedStrip(
                {fittedStrip(image.picture, index * strips.rows, strips.rows, cancellation),
                 index == 0 ? &image.metadata : nullptr, index == 0 ? packing : std::nullopt, strips.interval},
                quality, file);
        }
    };
    std::vector<std::future<void>> others;
    for (int thread = std::min<int>(strips.count, static_cast<int>(std::thread::hardware_concurrency())); thread > 1;
         --thread)
        others.push_back(std::async(std::launch::async, work));
    work();
    for (std::future<void> &other : others)
        other.get();
    return coded;
}

std::size_t placeOf(std::uint8_t marker, std::span<const std::uint8_t> file) {
    std::size_t place = 2;
    while (file[place + 1] != marker)
        place += std::size_t{2} + (std::size_t{file[place + 2]} << 8 | file[place + 3]);
    return place;
}

void setHeight(std::span<std::uint8_t> file, int height) {
    const std::size_t place = placeOf(frameHeader, file) + 5;
    file[place] = static_cast<std::uint8_t>(height >> 8);
    file[place + 1] = static_cast<std::uint8_t>(height);
}

std::span<const std::uint8_t> withoutEnd(std::span<const std::uint8_t> file) {
    return file.first(file.size() - endOfImage.size());
}

std::span<const std::uint8_t> samplesOf(std::span<const std::uint8_t> file) {
    const std::size_t place = placeOf(scanHeader, file) + 2;
    return withoutEnd(file.subspan(place + (std::size_t{file[place]} << 8 | file[place + 1])));
}

void writeJoined(const std::vector<JpegBytes> &strips, int height, const OutputFile &file) {
    FileStream stream = streamOf(file);
    const auto write = [&](std::span<const std::uint8_t> bytes) {
        std::fwrite(bytes.data(), 1, bytes.size(), stream.get());
    };
    setHeight(strips.front().all(), height);
    write(withoutEnd(strips.front().all()));
    for (std::size_t index = 1; index < strips.size(); ++index) {
        write(std::array<std::uint8_t, 2>{0xff, static_cast<std::uint8_t>(0xd0 | ((index - 1) & 7))}); // restart
        write(samplesOf(strips[index].all()));
    }
    write(endOfImage);
    closeWritten(std::move(stream), file);
}

} // namespace

int jpegQuality(double quality) {
    // Linear interpolation between points that were chosen by viewing: 0.75 shows no blocks at reading distance.
    constexpr std::array<std::array<double, 2>, 4> points{{{0, 10}, {0.5, 72}, {0.75, 86}, {1, 100}}};
    const double wanted = std::clamp(std::isnan(quality) ? 1.0 : quality, 0.0, 1.0);
    for (std::size_t i = 1; i < points.size(); ++i)
        if (wanted <= points[i][0]) {
            const double part = (wanted - points[i - 1][0]) / (points[i][0] - points[i - 1][0]);
            return static_cast<int>(std::lround(points[i - 1][1] + part * (points[i][1] - points[i - 1][1])));
        }
    return 100;
}

void writeJpeg(const OutputFile &file, const StillImage &image, double quality,
               const std::optional<StereoPacking> &packing, const Cancellation &cancellation) {
    const Picture &picture = image.picture;
    if (picture.width > JPEG_MAX_DIMENSION || picture.height > JPEG_MAX_DIMENSION)
        throw MediaError(file.path(), MediaOperation::write, 0, MediaReason::beyondFormat,
                         std::to_string(picture.width) + " x " + std::to_string(picture.height));
    const int libraryQuality = jpegQuality(quality);
    const Strips strips = stripsOf(picture, libraryQuality);
    writeJoined(codedStrips(image, strips, libraryQuality, packing, file.path(), cancellation), picture.height, file);
}

} // namespace lumetwin::media::images
