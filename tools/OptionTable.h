// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/SettingsRules.h"

#include <span>
#include <string>
#include <string_view>

namespace lumetwin::batch {

struct BatchOptions;

/// One option of the convert command. It sets one field.
struct Option {
    std::string_view name;     ///< "--direction"
    std::string_view argument; ///< the name of its value in the help text; empty for a switch
    std::string_view help;     ///< the description in the help text
    /// Sets the field. name: the option's name for the message. Throws UsageError when the value is not valid.
    void (*apply)(BatchOptions &options, std::string_view value, const std::string &name);
    const NumberRange *range = nullptr;           ///< of a number; the help text ends in it
    std::span<const std::string_view> words = {}; ///< the values that are words
};

std::span<const Option> optionTable();

/// The help text of an option, with the numbers that it takes and its default.
std::string description(const Option &option);

/// The option of that name, or null.
const Option *findOption(std::string_view name);

} // namespace lumetwin::batch
