// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace lumetwin {

/// Whether a file can be made in a folder. It is tried, because permissions alone do not tell: a disk may be
/// read-only, and a share may have rules of its own. Nothing stays behind.
bool canWriteInto(const std::filesystem::path &folder);

} // namespace lumetwin
