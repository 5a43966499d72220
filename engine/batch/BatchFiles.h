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

/// The files of a run: the output path of each file, and whether it matches the direction.
class BatchFiles {
public:
    using Path = std::filesystem::path;

    /// `isSpatial` is called at most once for each file, when the answer is first needed.
    BatchFiles(const ConversionSettings &settings, const std::vector<ListedFile> &files,
               std::function<bool(const Path &)> isSpatial);

    std::size_t count() const { return files_.size(); }
    const Path &input(std::size_t index) const { return files_[index].input; }
    /// The file of the right eye; empty when one file has both eyes.
    const Path &rightEye(std::size_t index) const { return files_[index].rightEye; }
    const std::string &name(std::size_t index) const { return files_[index].name; }
    /// The output path according to the naming rules, whether or not that file exists.
    const Path &output(std::size_t index) const { return files_[index].output; }

    /// For a folder that could not be listed: the reason. Empty for a file.
    const std::string &listingError(std::size_t index) const { return files_[index].listingError; }

    bool isSpatial(std::size_t index) const;
    /// Whether the file matches the direction of the run.
    bool matchesDirection(std::size_t index) const;
    /// Other files of the run that match the direction and have the same output path.
    std::vector<std::size_t> inputsWithSameOutput(std::size_t index) const;

private:
    struct File {
        Path input;
        Path rightEye;
        std::string name;
        Path output;
        std::string listingError;
    };

    ConversionDirection direction_;
    std::vector<File> files_;
    std::multimap<Path, std::size_t> indexesByOutput_;
    std::function<bool(const Path &)> askWhetherSpatial_;
    mutable std::vector<std::optional<bool>> isSpatial_; ///< nullopt until it is first needed
};

} // namespace lumetwin
