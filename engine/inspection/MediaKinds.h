// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <string_view>

namespace lumetwin {

inline constexpr std::array<std::string_view, 6> videoExtensions{"mov", "mp4", "m4v", "hevc", "avi", "mkv"};
/// Of other videos that are taken as well.
inline constexpr std::array<std::string_view, 6> furtherVideoExtensions{"webm", "3gp", "ts", "m2ts", "mts", "wmv"};
inline constexpr std::array<std::string_view, 7> photoExtensions{"heic", "heif", "jpg", "jpeg", "png", "tiff", "tif"};
/// Photos of stereo cameras and viewers: JPEG and PNG files under other names.
inline constexpr std::array<std::string_view, 3> furtherPhotoExtensions{"mpo", "jps", "pns"};

/// The file's extension without its dot, in lower case (ASCII).
std::string lowerCasedExtension(const std::filesystem::path &file);
bool isVideoFile(const std::filesystem::path &file);
bool isPhotoFile(const std::filesystem::path &file);
/// Whether the file has the extension of a video or photo.
bool isMediaFile(const std::filesystem::path &file);

} // namespace lumetwin
