// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace lumetwin::test {

/// Draws an input for pictures of the window: photos of two eyes with a pattern that is farther away on the right, one
/// without two eyes, a file that cannot be read, and one of another kind.
void drawInput(const std::filesystem::path &folder);

} // namespace lumetwin::test
