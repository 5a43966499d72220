// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace lumetwin {

/// Whether a run has already made this output of the input: it is whole (outputs get their names when they are), it can
/// be read as what it is, and it is newer than the input. Never throws.
bool isUpToDate(const std::filesystem::path &input, const std::filesystem::path &output) noexcept;

} // namespace lumetwin
