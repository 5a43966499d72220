// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <vector>

namespace lumetwin {

/// Opens the folder in the desktop's file manager and selects the files. Opens just the folder when that is not
/// possible.
void showInFileManager(const std::filesystem::path &folder, const std::vector<std::filesystem::path> &files);

} // namespace lumetwin
