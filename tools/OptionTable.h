// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace lumetwin::batch {

struct BatchOptions;

/// One option of a conversion; it sets one field.
struct Option {
    std::string_view name;     ///< "--direction"
    std::string_view argument; ///< what help calls its value; empty for a switch
    std::string_view help;     ///< lines that begin with what the option is for
    /// Throws UsageError when the value does not fit; the name is for its words.
    void (*apply)(BatchOptions &options, std::string_view value, const std::string &name);
};

std::span<const Option> optionTable();

/// Nothing for an unknown name.
const Option *findOption(std::string_view name);

} // namespace lumetwin::batch
