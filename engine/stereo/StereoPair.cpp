// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/StereoPair.h"

#include "engine/photo/SpatialPhotoError.h"
#include "engine/texts/MediaErrorTexts.h"
#include "media/HeifFile.h"
#include "media/Image.h"

namespace lumetwin {

namespace {

std::size_t countOf(const std::filesystem::path &file) {
    try {
        return static_cast<std::size_t>(media::imageCount(file));
    } catch (const media::MediaError &error) {
        throw SpatialPhotoError::cannotOpenFile(file, causeOf(error));
    }
}

media::HeifFile heifFile(const std::filesystem::path &file) {
    try {
        return media::readHeifFile(file);
    } catch (const media::MediaError &error) {
        throw SpatialPhotoError::notASpatialPhoto(SpatialPhotoError::noContainerProperties(), causeOf(error));
    }
}

} // namespace

StereoPair readStereoPair(const std::filesystem::path &file) {
    const std::size_t count = countOf(file);
    if (count < 2)
        throw SpatialPhotoError::notASpatialPhoto(SpatialPhotoError::tooFewImages(count));
    if (media::imageKind(file) != media::ImageKind::heif)
        throw SpatialPhotoError::notASpatialPhoto(SpatialPhotoError::noStereoGroup());
    const media::HeifFile heif = heifFile(file);
    const auto eyes = heif.stereoEyes();
    if (!eyes)
        throw SpatialPhotoError::notASpatialPhoto(SpatialPhotoError::noStereoGroup());
    return {heif.images.at(eyes->left).item, heif.images.at(eyes->right).item};
}

} // namespace lumetwin
