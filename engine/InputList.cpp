// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/InputList.h"

#include "engine/FileNames.h"
#include "engine/MediaKinds.h"

#include <algorithm>
#include <iterator>

namespace lumetwin {

std::vector<std::filesystem::path> visibleChildren(const std::filesystem::path &folder) {
    std::vector<std::filesystem::path> children;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        if (!lastPathComponent(entry.path()).starts_with('.'))
            children.push_back(entry.path());
    return children;
}

std::vector<std::filesystem::path> mediaFiles(const std::vector<std::filesystem::path> &files) {
    std::vector<std::filesystem::path> kept;
    std::ranges::copy_if(files, std::back_inserter(kept), isMediaFile);
    return kept;
}

void sortByName(std::vector<std::filesystem::path> &files) {
    std::ranges::stable_sort(files, {}, lastPathComponent);
}

} // namespace lumetwin
