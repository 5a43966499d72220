// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"
#include "ui/alerts/Alert.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace lumetwin {

// The checks before a run, one by one. They show nothing and ask nobody.

/// The chosen files, or the folder's visible entries, in listing order. A folder that cannot be listed is empty.
std::vector<std::filesystem::path> inputEntries(const ConversionSettings &settings);

std::vector<std::filesystem::path> candidateVideos(const std::vector<std::filesystem::path> &entries);

bool holdsAVI(const std::vector<std::filesystem::path> &entries);

/// The question about a direction that does not match the candidates; nothing when it matches. A batch meant to become
/// side-by-side is questioned only when not one video is spatial, one meant to become spatial as soon as one already
/// is.
std::optional<Alert> directionMismatch(ConversionDirection direction, std::size_t candidates, std::size_t spatial);

/// The refusal of odd resize sizes.
std::optional<Alert> oddResizeSize(const ConversionSettings &settings);

/// The names of outputs that exist already, in input order. It looks at names only: what the engine will later skip is
/// listed all the same.
std::vector<std::string> existingOutputs(const std::vector<std::filesystem::path> &entries,
                                         const ConversionSettings &settings);

Alert overwriteQuestion(const std::vector<std::string> &names);
/// What a button of that question says is to happen to those files; nothing where the start is called off.
std::optional<OnExisting> overwriteAnswer(int button);

} // namespace lumetwin
