// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/MediaDescription.h"

#include "engine/batch/MediaKinds.h"
#include "media/StereoMovieFacts.h"

namespace lumetwin {
namespace {

// Bits of the stereo view box (stri) and values of the hero eye box (hero), as seen in platform-written files.
constexpr std::uint8_t leftEyeBit = 1;
constexpr std::uint8_t rightEyeBit = 2;

std::optional<MediaDescription::Eye> heroEye(const std::optional<std::uint8_t> &value) {
    if (!value || *value > 2)
        return std::nullopt;
    return static_cast<MediaDescription::Eye>(*value);
}

} // namespace

MediaDescription describeMedia(const std::filesystem::path &file) {
    MediaDescription description;
    if (isPhotoFile(file)) {
        description.kind = MediaDescription::Kind::photo;
        description.isSpatial = isSpatialPhoto(file);
        description.values = photoStereoValues(file);
        return description;
    }
    description.isSpatial = isSpatialVideo(file);
    description.values = videoStereoValues(file);
    const media::StereoMovieFacts facts = media::readStereoMovieFacts(file);
    description.hasLeftEye = facts.eyes.value_or(0) & leftEyeBit;
    description.hasRightEye = facts.eyes.value_or(0) & rightEyeBit;
    description.heroEye = heroEye(facts.heroEye);
    description.projection = facts.projection;
    description.isMultilayer = facts.multilayer;
    return description;
}

} // namespace lumetwin
