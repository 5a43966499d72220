// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/OnExisting.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace lumetwin {

/// Where a result goes, by what lies at its place: the place itself; one with a number that is free ("trip_sbs 2.mp4");
/// nothing where the input is passed over.
std::optional<std::filesystem::path> settledOutput(const std::filesystem::path &output, OnExisting onExisting);

/// The places of a result that are taken: the place itself, and the numbered ones where results get numbers.
std::vector<std::filesystem::path> takenPlaces(const std::filesystem::path &output, OnExisting onExisting);

/// Throws ProcessorError where no file can be written at this place: its folder is missing or may not be written to,
/// the file system is read-only, or a folder has this name. The folders below the output folder are made (they belong
/// to the tree of the input).
void preparePlace(const std::filesystem::path &output, const std::filesystem::path &outputFolder);

} // namespace lumetwin
