// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"

#include <filesystem>

namespace lumetwin {

/// Whether an earlier run has finished this output: it exists under its final name, it can be read as its file type,
/// and it is newer than the input. Calls operations.look. Never throws.
bool isUpToDate(const std::filesystem::path &input, const std::filesystem::path &output,
                const MediaOperations &operations) noexcept;

} // namespace lumetwin
