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

/// Indexes of the left and the right image.
std::pair<std::size_t, std::size_t> eyesOf(const media::HeifStereoGroup &group) {
    // A group that names nobody means the first two images; one that names the wrong ones is damaged.
    if (group.entities.empty())
        return {0, 1};
    if (!group.left || !group.right)
        throw SpatialPhotoError::imageExtractionFailed();
    return {*group.left, *group.right};
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
    const media::HeifStereoGroup *group = heif.stereoGroup();
    if (!group)
        throw SpatialPhotoError::notASpatialPhoto("No stereo pair group found");
    const auto [left, right] = eyesOf(*group);
    return {heif.images.at(left).item, heif.images.at(right).item};
}

} // namespace lumetwin
