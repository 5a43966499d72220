// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace lumetwin {

/// Whether a file can be created in a folder. This creates and removes one, because permissions are not enough to know
/// it: a disk may be read-only, and a network share may have its own rules.
bool canWriteInto(const std::filesystem::path &folder);

} // namespace lumetwin
