// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/batch/InputList.h"
#include "model/ConversionSettings.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace lumetwin {

/// The files of a run: where each result goes, and which files suit the direction.
class BatchFiles {
public:
    using Path = std::filesystem::path;

    /// `isSpatial` is asked once for each file, when that is first needed.
    BatchFiles(const ConversionSettings &settings, const std::vector<ListedFile> &files,
               std::function<bool(const Path &)> isSpatial);

    std::size_t count() const { return files_.size(); }
    const Path &input(std::size_t index) const { return files_[index].input; }
    const std::string &name(std::size_t index) const { return files_[index].name; }
    /// The place of the result by the naming rules, whatever lies there.
    const Path &output(std::size_t index) const { return files_[index].output; }

    /// Why a folder that stands in the place of a file cannot be listed; empty for a file.
    const std::string &obstacle(std::size_t index) const { return files_[index].obstacle; }

    bool isSpatial(std::size_t index) const;
    /// Whether the run converts the file, by its direction.
    bool suits(std::size_t index) const;
    /// Other files that the run converts and whose results have the same place.
    std::vector<std::size_t> rivals(std::size_t index) const;

private:
    struct File {
        Path input;
        std::string name;
        Path output;
        std::string obstacle;
    };

    ConversionDirection direction_;
    std::vector<File> files_;
    std::multimap<Path, std::size_t> indexesByOutput_;
    std::function<bool(const Path &)> askWhetherSpatial_;
    mutable std::vector<std::optional<bool>> isSpatial_; ///< as far as it was asked
};

} // namespace lumetwin
