// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/texts/Texts.h"

#include <string>
#include <string_view>
#include <type_traits>

namespace lumetwin {

/// A message in two languages: English for the log, and the user's language.
struct Words {
    std::string english;
    std::string shown;

    bool operator==(const Words &) const = default;
};

/// The text of a key in both languages. A format text is filled with the arguments, which may be Words too.
template <typename... Arguments> Words words(std::string_view key, const Arguments &...arguments) {
    const auto filled = [&](const std::string &text, std::string Words::*language) {
        const auto part = [language]<typename Argument>(const Argument &argument) -> decltype(auto) {
            if constexpr (std::is_same_v<Argument, Words>)
                return argument.*language;
            else
                return (argument);
        };
        if constexpr (sizeof...(arguments) == 0)
            return text;
        else
            return fmt::sprintf(text, part(arguments)...);
    };
    return {filled(englishText(key), &Words::english), filled(text(key), &Words::shown)};
}

/// The message followed by its cause in brackets, if there is a cause.
Words withCause(const Words &words, const Words &cause);

} // namespace lumetwin
