// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/InputList.h"

#include "engine/FileNames.h"
#include "engine/MediaKinds.h"

#include <algorithm>
#include <system_error>

namespace lumetwin {
namespace {

std::string nameOf(const ListedFile &listed) {
    return lastPathComponent(listed.file);
}

bool isFolderToEnter(const std::filesystem::directory_entry &entry, const std::filesystem::path &except) {
    std::error_code ignored;
    return entry.is_directory(ignored) && !entry.is_symlink(ignored) &&
           !std::filesystem::equivalent(entry.path(), except, ignored);
}

/// Adds the media files of one folder and of those below it.
void addTree(const std::filesystem::path &folder, const std::filesystem::path &relative,
             const std::filesystem::path &except, std::vector<ListedFile> &files) {
    std::vector<std::filesystem::path> here;
    std::vector<std::filesystem::path> folders;
    for (const std::filesystem::path &child : visibleChildren(folder)) {
        if (isFolderToEnter(std::filesystem::directory_entry(child), except))
            folders.push_back(child);
        else
            here.push_back(child);
    }
    for (ListedFile &listed : mediaFiles(here))
        files.push_back({std::move(listed.file), relative});
    std::ranges::sort(folders);
    for (const std::filesystem::path &child : folders) {
        try {
            addTree(child, relative / child.filename(), except, files);
        } catch (const std::filesystem::filesystem_error &) {
            continue; // a folder that may not be read holds nothing for this user
        }
    }
}

} // namespace

std::vector<std::filesystem::path> visibleChildren(const std::filesystem::path &folder) {
    std::vector<std::filesystem::path> children;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        if (!lastPathComponent(entry.path()).starts_with('.'))
            children.push_back(entry.path());
    return children;
}

std::vector<ListedFile> mediaFiles(const std::vector<std::filesystem::path> &files) {
    std::vector<ListedFile> kept;
    for (const std::filesystem::path &file : files)
        if (isMediaFile(file))
            kept.push_back({file, {}});
    std::ranges::stable_sort(kept, {}, nameOf);
    return kept;
}

std::vector<ListedFile> mediaTree(const std::filesystem::path &folder, const std::filesystem::path &except) {
    std::vector<ListedFile> files;
    addTree(folder, {}, except, files);
    return files;
}

} // namespace lumetwin
