// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/Inspection.h"

#include "engine/inspection/MediaKinds.h"
#include "engine/inspection/VideoInfo.h"
#include "media/Image.h"
#include "media/MovieFile.h"
#include "media/SpatialPhoto.h"
#include "media/StereoMovieFacts.h"

#include <cmath>
#include <cstdlib>
#include <numbers>

namespace lumetwin {

namespace {

using Eye = MediaFacts::Eye;
using Kind = MediaFacts::Kind;

// The first system version that supports stereo movies.
constexpr SystemVersion stereoMovies{14, 0, 0};
// Bits of the stereo view box (stri), as found in files that the platform wrote.
constexpr std::uint8_t leftEyeBit = 1;
constexpr std::uint8_t rightEyeBit = 2;

template <typename Integer> std::optional<double> scaled(const std::optional<Integer> &value, double unit) {
    return value ? std::optional(*value / unit) : std::nullopt;
}

double fieldOfView(const media::StereoPhotoFacts::Lens &lens) {
    return 2 * std::atan((lens.imageWidth * 0.5) / lens.focalLength) * 180 / std::numbers::pi;
}

double baseline(std::int32_t cameraPosition) {
    const double metres = cameraPosition / 1e6;
    return std::abs(metres) * 1000;
}

MediaFacts photoFacts(const media::InputFile &file) {
    MediaFacts facts;
    facts.kind = Kind::photo;
    const std::optional<media::ImageKind> kind = media::imageKind(file);
    facts.isReadable = kind.has_value();
    if (kind != media::ImageKind::heif)
        return facts;
    const media::StereoPhotoFacts stereo = media::stereoPhotoFacts(media::ImageFile(file));
    facts.isSpatial = stereo.hasStereoGroup;
    if (stereo.lens)
        facts.values.horizontalFOV = fieldOfView(*stereo.lens);
    if (stereo.cameraPosition)
        facts.values.stereoBaseline = baseline(*stereo.cameraPosition);
    facts.values.disparity = scaled(stereo.disparityAdjustment, 100.0);
    return facts;
}

/// The values of the hero eye box (hero).
std::optional<Eye> heroEye(const std::optional<std::uint8_t> &value) {
    if (!value || *value > 2)
        return std::nullopt;
    return static_cast<Eye>(*value);
}

MediaFacts videoFacts(const media::InputFile &file) {
    const media::StereoMovieFacts stereo = media::readStereoMovieFacts(file);
    MediaFacts facts;
    facts.isReadable = stereo.hasSampleDescription;
    // A file that packs both eyes into one picture is no spatial one, whatever it says of its cameras.
    const bool isPacked = stereo.packing == "side" || stereo.packing == "over";
    facts.isSpatial = stereo.hasVideoTrack && stereo.hasSampleDescription && stereo.anyBaseline && !isPacked;
    facts.values = {scaled(stereo.horizontalFieldOfView, 1000.0), scaled(stereo.baseline, 1000.0),
                    scaled(stereo.disparityAdjustment, 100.0)};
    facts.hasLeftEye = stereo.eyes.value_or(0) & leftEyeBit;
    facts.hasRightEye = stereo.eyes.value_or(0) & rightEyeBit;
    facts.heroEye = heroEye(stereo.heroEye);
    facts.projection = stereo.projection;
    facts.isMultilayer = stereo.multilayer;
    return facts;
}

} // namespace

MediaFacts lookAt(const media::InputFile &file) noexcept {
    const bool isPhoto = isPhotoFile(file.path());
    try {
        return isPhoto ? photoFacts(file) : videoFacts(file);
    } catch (const std::exception &) {
        MediaFacts facts;
        facts.kind = isPhoto ? Kind::photo : Kind::video;
        return facts;
    }
}

bool isSpatialPhoto(const MediaFacts &facts) {
    return facts.kind == Kind::photo && facts.isSpatial;
}

bool isSpatialVideo(const MediaFacts &facts, SystemVersion system) {
    return facts.kind == Kind::video && system >= stereoMovies && facts.isSpatial;
}

StereoValues stereoValues(const MediaFacts &facts, SystemVersion system) {
    return facts.kind == Kind::photo || system >= stereoMovies ? facts.values : StereoValues{};
}

PictureSize pictureSize(const media::InputFile &file) {
    if (isPhotoFile(file.path())) {
        const media::PixelSize size = media::ImageFile(file).size();
        return {size.width, size.height};
    }
    const VideoInfo info = loadVideoInfo(media::MovieFile(file));
    return {info.width, info.height};
}

} // namespace lumetwin
