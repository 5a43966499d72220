// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <vector>

namespace lumetwin {

/// The direct children of a folder that are not hidden (whose names do not begin with a dot), in listing order.
/// Throws std::filesystem::filesystem_error when the folder cannot be listed.
std::vector<std::filesystem::path> visibleChildren(const std::filesystem::path &folder);

/// The media files among the given ones, in their order.
std::vector<std::filesystem::path> mediaFiles(const std::vector<std::filesystem::path> &files);

/// Sorts by file name: plain, case-sensitive and stable (B.mov before a.mov, IMG_10 before IMG_9).
void sortByName(std::vector<std::filesystem::path> &files);

} // namespace lumetwin
