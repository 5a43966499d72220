// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace lumetwin {

/// The last component of a path, even when the path ends in a separator. It is UTF-8 only if the file system's name is.
std::string lastPathComponent(const std::filesystem::path &file);

/// The text in a form that is safe to print on one line: U+FFFD replaces invalid UTF-8 (RFC 3629) and every character
/// that controls a terminal, ends a line or changes the writing direction.
std::string printable(std::string_view text);

} // namespace lumetwin
