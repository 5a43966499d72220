// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/SpatialPhotoError.h"

#include "engine/FileNames.h"

namespace lumetwin {

SpatialPhotoError SpatialPhotoError::cannotOpenFile(const std::filesystem::path &file) {
    return {Case::cannotOpenFile, "Could not open the file: " + lastPathComponent(file)};
}

SpatialPhotoError SpatialPhotoError::notASpatialPhoto(const std::string &reason) {
    return {Case::notASpatialPhoto, "This is not a spatial photo: " + reason};
}

SpatialPhotoError SpatialPhotoError::cannotCreateDestination(const std::filesystem::path &file) {
    return {Case::cannotCreateDestination, "Could not create the output destination: " + lastPathComponent(file)};
}

SpatialPhotoError SpatialPhotoError::finalizationFailed(const std::filesystem::path &file) {
    return {Case::finalizationFailed, "Failed to write spatial photo: " + lastPathComponent(file)};
}

SpatialPhotoError SpatialPhotoError::imageExtractionFailed() {
    return {Case::imageExtractionFailed, "Failed to retrieve left and right images."};
}

SpatialPhotoError SpatialPhotoError::invalidImage() {
    return {Case::invalidImage, "Could not convert NSImage to CGImage"};
}

} // namespace lumetwin
