// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <fmt/printf.h>

#include <string>
#include <string_view>

namespace lumetwin {

/// The text of a key in the current language, or the key itself if the table has no text for it.
std::string text(std::string_view key);
/// As above, but returns the given English text if the table has no text for the key.
std::string text(std::string_view key, std::string_view englishDefault);
/// The English text of a key, in any current language, or the key itself if the table has no text for it.
std::string englishText(std::string_view key);

/// Formats the text of the key in the style of printf. The arguments are 64-bit integers, doubles and strings.
template <typename... Arguments> std::string formatted(std::string_view key, const Arguments &...arguments) {
    return fmt::sprintf(text(key), arguments...);
}

/// Selects the table ("en" or "ja") for a locale name such as "ja_JP.UTF-8". Locales without a table get English. Until
/// this is called, the environment decides (LC_ALL, LC_MESSAGES, LANG).
void setTextLocale(std::string_view locale);
/// The language of the current table.
std::string_view textLanguage();

} // namespace lumetwin
