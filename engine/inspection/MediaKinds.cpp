// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/MediaKinds.h"

#include "engine/texts/FileNames.h"

#include <algorithm>

namespace lumetwin {

std::string lowerCasedExtension(const std::filesystem::path &file) {
    std::string extension = std::filesystem::path(lastPathComponent(file)).extension().string();
    if (!extension.empty())
        extension.erase(0, 1);
    std::ranges::transform(extension, extension.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? char(letter - 'A' + 'a') : letter;
    });
    return extension;
}

bool isVideoFile(const std::filesystem::path &file) {
    return std::ranges::find(videoExtensions, lowerCasedExtension(file)) != videoExtensions.end();
}

bool isPhotoFile(const std::filesystem::path &file) {
    return std::ranges::find(photoExtensions, lowerCasedExtension(file)) != photoExtensions.end();
}

bool isMediaFile(const std::filesystem::path &file) {
    return isVideoFile(file) || isPhotoFile(file);
}

} // namespace lumetwin
