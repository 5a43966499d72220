// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/StereoPair.h"

#include "engine/SpatialPhotoError.h"
#include "media/HeifFile.h"
#include "media/ImageFile.h"
#include "media/MediaError.h"

namespace lumetwin {

namespace {

int countOf(const std::filesystem::path &file) {
    try {
        return media::imageCount(file);
    } catch (const media::MediaError &) {
        throw SpatialPhotoError::cannotOpenFile(file);
    }
}

media::HeifFile heifFile(const std::filesystem::path &file) {
    try {
        return media::readHeifFile(file);
    } catch (const media::MediaError &) {
        throw SpatialPhotoError::notASpatialPhoto("The container property cannot be retrieved.");
    }
}

} // namespace

StereoPair readStereoPair(const std::filesystem::path &file) {
    const int count = countOf(file);
    if (count < 2)
        throw SpatialPhotoError::notASpatialPhoto(
            "Does not contain two or more images (count=" + std::to_string(count) + ")");
    if (media::imageKind(file) != media::ImageKind::heif)
        throw SpatialPhotoError::notASpatialPhoto("No stereo pair group found");
    const media::HeifFile heif = heifFile(file);
    const auto eyes = heif.stereoEyes();
    if (!eyes)
        throw SpatialPhotoError::notASpatialPhoto("No stereo pair group found");
    return {heif.images.at(eyes->left).item, heif.images.at(eyes->right).item};
}

} // namespace lumetwin
