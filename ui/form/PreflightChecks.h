// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"
#include "ui/alerts/Alert.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace lumetwin {

// The checks before a run, as functions without user interface.

/// The chosen files, or the folder's visible entries, in listing order, without those that the user left out. Empty
/// when the folder cannot be listed.
std::vector<std::filesystem::path> inputEntries(const ConversionSettings &settings);

std::vector<std::filesystem::path> candidateVideos(const std::vector<std::filesystem::path> &entries);

bool containsAVI(const std::vector<std::filesystem::path> &entries);

/// The question to ask when the direction does not match the candidates; nullopt when it matches. For spatial to
/// side-by-side it is asked when no video is spatial, for side-by-side to spatial when at least one video is already
/// spatial. spatial: number of spatial candidates.
std::optional<Alert> directionMismatch(ConversionDirection direction, std::size_t candidates, std::size_t spatial);

/// The error message for an odd resize width or height; nullopt when both are even.
std::optional<Alert> oddResizeSizeError(const ConversionSettings &settings);

/// The names of the outputs that already exist, in input order. Only names are compared, so files that the engine will
/// skip later are included.
std::vector<std::string> existingOutputs(const std::vector<std::filesystem::path> &entries,
                                         const ConversionSettings &settings);

Alert overwriteQuestion(const std::vector<std::string> &names);
/// What the pressed button of that question means for the existing files; nullopt when the start is cancelled.
std::optional<OnExisting> overwriteAnswer(int button);

} // namespace lumetwin
