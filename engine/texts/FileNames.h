// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace lumetwin {

/// A path's last component, also where the path ends in a separator. UTF-8, or the file system's own bytes
/// where those are none.
std::string lastPathComponent(const std::filesystem::path &file);

/// Text that is safe to print on one line: what is not valid UTF-8 (RFC 3629), and every character that controls
/// a terminal, ends a line or turns the writing direction, becomes U+FFFD.
std::string printable(std::string_view text);

} // namespace lumetwin
