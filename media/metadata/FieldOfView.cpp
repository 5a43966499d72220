// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/metadata/FieldOfView.h"

#include "media/metadata/ExifBytes.h"
#include "media/metadata/TagDirectory.h"

#include <cmath>
#include <numbers>

namespace lumetwin::media::images {

namespace {

// Fields of CIPA DC-008, 4.6.5.
constexpr std::uint16_t focalLength = 0x920A; // millimetres
constexpr std::uint16_t focalPlaneResolution = 0xA20E;
constexpr std::uint16_t focalPlaneUnit = 0xA210;
constexpr std::uint16_t focalLengthOnFilm = 0xA405; // millimetres; 0: unknown

constexpr double filmDiagonal = 43.2666; // millimetres, of 36 x 24; the diagonals are compared (CIPA DCG-001)

/// Millimetres of the focal plane's unit; 0 for unknown ones.
double millimetres(std::uint32_t unit) {
    switch (unit) {
    case 2:
        return 25.4;
    case 3:
        return 10;
    case 4:
        return 1;
    case 5:
        return 0.001;
    default:
        return 0;
    }
}

/// The width of the picture in units of the focal length.
std::optional<double> relativeWidth(const TagDirectory &photograph, double width, double height) {
    if (const auto onFilm = photograph.number(focalLengthOnFilm); onFilm && *onFilm > 0)
        return filmDiagonal * width / std::hypot(width, height) / *onFilm;
    const auto length = photograph.number(focalLength);
    const auto resolution = photograph.number(focalPlaneResolution);
    const double unit = millimetres(photograph.whole(focalPlaneUnit).value_or(2));
    if (!length || !resolution || *length <= 0 || *resolution <= 0 || unit <= 0)
        return std::nullopt;
    return width / *resolution * unit / *length;
}

} // namespace

std::optional<double> horizontalFieldOfView(std::span<const std::uint8_t> exif, double width, double height) {
    const auto camera = TagDirectory::first(exif);
    const auto photograph = camera ? camera->below(exif::photographDirectory) : std::nullopt;
    const auto relative =
        photograph && width > 0 && height > 0 ? relativeWidth(*photograph, width, height) : std::nullopt;
    if (!relative)
        return std::nullopt;
    const double degrees = 2 * std::atan(*relative / 2) * 180 / std::numbers::pi;
    return degrees >= 1 && degrees <= 179 ? std::optional(degrees) : std::nullopt;
}

} // namespace lumetwin::media::images
