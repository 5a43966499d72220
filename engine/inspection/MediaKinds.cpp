// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/MediaKinds.h"

#include "engine/texts/FileNames.h"

#include <algorithm>
#include <span>

namespace lumetwin {

namespace {

bool isOneOf(std::span<const std::string_view> extensions, const std::filesystem::path &file) {
    return std::ranges::find(extensions, lowerCasedExtension(file)) != extensions.end();
}

} // namespace

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
    return isOneOf(videoExtensions, file) || isOneOf(furtherVideoExtensions, file);
}

bool isPhotoFile(const std::filesystem::path &file) {
    return isOneOf(photoExtensions, file) || isOneOf(furtherPhotoExtensions, file);
}

bool isMediaFile(const std::filesystem::path &file) {
    return isVideoFile(file) || isPhotoFile(file);
}

} // namespace lumetwin
