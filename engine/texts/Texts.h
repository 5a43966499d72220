// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <fmt/printf.h>

#include <string>
#include <string_view>

namespace lumetwin {

/// The text of a key in the current language; the key itself where the table has none.
std::string text(std::string_view key);
/// As above, but the given English text where the table has none.
std::string text(std::string_view key, std::string_view englishDefault);
/// The English text of a key, whatever the current language; the key itself where the table has none.
std::string englishText(std::string_view key);

/// The key's format text, filled printf-style: 64-bit integers, doubles and strings, in the order of the arguments.
template <typename... Arguments> std::string formatted(std::string_view key, const Arguments &...arguments) {
    return fmt::sprintf(text(key), arguments...);
}

/// Chooses the table ("en" or "ja") for a locale name such as "ja_JP.UTF-8"; locales without a table get English.
/// Until this is called, the language follows the environment (LC_ALL, LC_MESSAGES, LANG).
void setTextLocale(std::string_view locale);
/// The language of the current table.
std::string_view textLanguage();

} // namespace lumetwin
