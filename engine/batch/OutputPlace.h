// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/OnExisting.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace lumetwin {

/// The path where a result is written: the given path; or, for keepBoth, one with a free number ("trip_sbs 2.mp4");
/// nullopt when the input is skipped.
std::optional<std::filesystem::path> chooseOutputPath(const std::filesystem::path &output, OnExisting onExisting);

/// The existing files of a result: the path itself, and with keepBoth also those with numbers.
std::vector<std::filesystem::path> existingOutputPaths(const std::filesystem::path &output, OnExisting onExisting);

/// Throws ProcessorError when no file can be written at this path: its folder is missing or not writable, the file
/// system is read-only, or a folder has this name. Creates missing folders below the output folder, for the tree of the
/// input.
void prepareOutputPath(const std::filesystem::path &output, const std::filesystem::path &outputFolder);

} // namespace lumetwin
