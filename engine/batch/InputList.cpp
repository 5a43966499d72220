// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/InputList.h"

#include "engine/inspection/MediaKinds.h"
#include "engine/texts/FileNames.h"

#include <algorithm>
#include <system_error>

namespace lumetwin {
namespace {

std::string nameOf(const ListedFile &listed) {
    return lastPathComponent(listed.file);
}

/// The direct children that are not hidden, with the file types that the listing returns.
std::vector<std::filesystem::directory_entry> visibleEntries(const std::filesystem::path &folder) {
    std::vector<std::filesystem::directory_entry> entries;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        if (!lastPathComponent(entry.path()).starts_with('.'))
            entries.push_back(entry);
    return entries;
}

bool isFolderToEnter(const std::filesystem::directory_entry &entry, const std::filesystem::path &except) {
    std::error_code ignored;
    return entry.is_directory(ignored) && !entry.is_symlink(ignored) &&
           !std::filesystem::equivalent(entry.path(), except, ignored);
}

/// Adds the media files of a folder and of its subfolders.
void addTree(const std::filesystem::path &folder, const std::filesystem::path &relative,
             const std::filesystem::path &except, std::vector<ListedFile> &files) {
    std::vector<std::filesystem::path> here;
    std::vector<std::filesystem::path> folders;
    for (const std::filesystem::directory_entry &entry : visibleEntries(folder))
        (isFolderToEnter(entry, except) ? folders : here).push_back(entry.path());
    for (ListedFile &listed : mediaFiles(here))
        files.push_back({.file = std::move(listed.file), .folder = relative});
    std::ranges::sort(folders);
    for (const std::filesystem::path &child : folders) {
        try {
            addTree(child, relative / child.filename(), except, files);
        } catch (const std::filesystem::filesystem_error &error) {
            files.push_back({.file = child, .folder = relative, .listingError = error.code().message()});
        }
    }
}

} // namespace

std::vector<std::filesystem::path> visibleChildren(const std::filesystem::path &folder) {
    std::vector<std::filesystem::path> children;
    for (const std::filesystem::directory_entry &entry : visibleEntries(folder))
        children.push_back(entry.path());
    return children;
}

std::vector<ListedFile> mediaFiles(const std::vector<std::filesystem::path> &files) {
    std::vector<ListedFile> kept;
    for (const std::filesystem::path &file : files)
        if (isMediaFile(file))
            kept.push_back({.file = file, .folder = {}});
    std::ranges::stable_sort(kept, {}, nameOf);
    return kept;
}

std::vector<ListedFile> mediaTree(const std::filesystem::path &folder, const std::filesystem::path &except) {
    std::vector<ListedFile> files;
    addTree(folder, {}, except, files);
    return files;
}

} // namespace lumetwin
