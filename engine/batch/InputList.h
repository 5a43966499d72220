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
    /// Where each eye has a file of its own: the right eye's; `file` is the left eye's then.
    std::filesystem::path rightEye = {};
    std::filesystem::path named = {}; ///< the name that the result is made from, where it is not that of the file
    std::string listingError = {};    ///< only for a folder that cannot be listed: the reason
};

/// The direct children of a folder, without hidden ones (whose names begin with a dot), in listing order. Throws
/// std::filesystem::filesystem_error when the folder cannot be listed.
std::vector<std::filesystem::path> visibleChildren(const std::filesystem::path &folder);

/// The media files among the given files, sorted by file name: byte order, case-sensitive, stable (B.mov before a.mov,
/// IMG_10 before IMG_9).
std::vector<ListedFile> mediaFiles(const std::vector<std::filesystem::path> &files);

/// The media files of a folder and its subfolders, sorted by folder and then by name as above. Hidden folders and links
/// to folders are left out, and so is `except` (the output folder, if it lies inside). A subfolder that cannot be
/// listed is an entry with the reason. Throws std::filesystem::filesystem_error when the folder itself cannot be
/// listed.
std::vector<ListedFile> mediaTree(const std::filesystem::path &folder, const std::filesystem::path &except);

} // namespace lumetwin
