// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/BatchFiles.h"

#include "engine/batch/OutputNaming.h"
#include "engine/texts/FileNames.h"

#include <utility>

namespace lumetwin {

BatchFiles::BatchFiles(const ConversionSettings &settings, const std::vector<ListedFile> &files,
                       std::function<bool(const Path &)> isSpatial)
    : direction_(settings.direction), askWhetherSpatial_(std::move(isSpatial)), isSpatial_(files.size()) {
    for (const ListedFile &listed : files) {
        const Path folder =
            listed.folder.empty() ? *settings.outputFolderURL : *settings.outputFolderURL / listed.folder;
        const Path &named = listed.named.empty() ? listed.file : listed.named;
        files_.push_back({listed.file, listed.rightEye, lastPathComponent(listed.file),
                          folder / outputName(named, settings), listed.listingError});
        indexesByOutput_.emplace(files_.back().output, files_.size() - 1);
    }
}

bool BatchFiles::isSpatial(std::size_t index) const {
    std::optional<bool> &known = isSpatial_[index];
    if (!known)
        known = askWhetherSpatial_(input(index));
    return *known;
}

bool BatchFiles::matchesDirection(std::size_t index) const {
    return listingError(index).empty() && isSpatial(index) == (direction_ == ConversionDirection::spatialToSBS);
}

std::vector<std::size_t> BatchFiles::inputsWithSameOutput(std::size_t index) const {
    std::vector<std::size_t> others;
    const auto [first, last] = indexesByOutput_.equal_range(output(index));
    for (auto entry = first; entry != last; ++entry)
        if (entry->second != index && matchesDirection(entry->second))
            others.push_back(entry->second);
    return others;
}

} // namespace lumetwin
