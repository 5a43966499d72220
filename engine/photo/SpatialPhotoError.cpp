// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/photo/SpatialPhotoError.h"

#include "engine/texts/FileNames.h"

#include <cstdint>

namespace lumetwin {

SpatialPhotoError SpatialPhotoError::cannotOpenFile(const std::filesystem::path &file, const Words &cause) {
    return {Case::cannotOpenFile,
            withCause(words("error.photo.cannot.open.file.format", lastPathComponent(file)), cause)};
}

SpatialPhotoError SpatialPhotoError::notASpatialPhoto(const Words &reason, const Words &cause) {
    return {Case::notASpatialPhoto, withCause(words("error.photo.not.spatial.format", reason), cause)};
}

SpatialPhotoError SpatialPhotoError::cannotCreateDestination(const std::filesystem::path &file, const Words &cause) {
    return {Case::cannotCreateDestination,
            withCause(words("error.photo.cannot.create.destination.format", lastPathComponent(file)), cause)};
}

SpatialPhotoError SpatialPhotoError::finalizationFailed(const std::filesystem::path &file, const Words &cause) {
    return {Case::finalizationFailed,
            withCause(words("error.photo.finalization.failed.format", lastPathComponent(file)), cause)};
}

SpatialPhotoError SpatialPhotoError::imageExtractionFailed(const Words &cause) {
    return {Case::imageExtractionFailed, withCause(words("error.photo.extraction.failed"), cause)};
}

SpatialPhotoError SpatialPhotoError::invalidImage() {
    return {Case::invalidImage, words("error.photo.invalid.image")};
}

Words SpatialPhotoError::tooFewImages(std::size_t count) {
    return words("error.photo.too.few.images.format", static_cast<std::int64_t>(count));
}

Words SpatialPhotoError::noContainerProperties() {
    return words("error.photo.no.container");
}

Words SpatialPhotoError::noStereoGroup() {
    return words("error.photo.no.stereo.group");
}

} // namespace lumetwin
