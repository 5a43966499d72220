// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace lumetwin {

/// An input of a run and the folder of its result, relative to the output folder (empty: the output folder itself).
struct ListedFile {
    std::filesystem::path file;
    std::filesystem::path folder;
    std::string obstacle; ///< only of a folder that stands here because it cannot be listed: why
};

/// The direct children of a folder that are not hidden (whose names do not begin with a dot), in listing order.
/// Throws std::filesystem::filesystem_error when the folder cannot be listed.
std::vector<std::filesystem::path> visibleChildren(const std::filesystem::path &folder);

/// The media files among the given ones, in their order, sorted by file name: plain, case-sensitive and stable (B.mov
/// before a.mov, IMG_10 before IMG_9).
std::vector<ListedFile> mediaFiles(const std::vector<std::filesystem::path> &files);

/// The media files of a folder and of the folders below it, sorted by folder, then by name as above. Hidden folders,
/// and links to folders, are not entered; nor is `except` (the output folder, where it lies inside). A folder below
/// that cannot be listed is an entry itself, with its obstacle. Throws std::filesystem::filesystem_error when the
/// folder itself cannot be listed.
std::vector<ListedFile> mediaTree(const std::filesystem::path &folder, const std::filesystem::path &except);

} // namespace lumetwin
