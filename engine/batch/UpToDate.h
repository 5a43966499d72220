// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace lumetwin {

/// Whether an earlier run has finished this output: it exists under its final name, it can be read as its file type,
/// and it is newer than the input. Never throws.
bool isUpToDate(const std::filesystem::path &input, const std::filesystem::path &output) noexcept;

} // namespace lumetwin
