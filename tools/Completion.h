// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace lumetwin::batch {

/// The shells that a completion script can be written for.
inline constexpr std::array<std::string_view, 3> shellNames{"bash", "zsh", "fish"};

/// The script that completes the command line of lumetwin-batch, made from the table of options. shell: one of
/// shellNames.
std::string completionScript(std::string_view shell);

} // namespace lumetwin::batch
