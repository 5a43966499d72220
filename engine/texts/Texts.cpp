// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/Texts.h"

#include "engine/texts/TextTable.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <map>

namespace lumetwin {

namespace embedded {
extern const std::string_view text_en;
extern const std::string_view text_ja;
} // namespace embedded

namespace {

struct Language {
    std::string_view name;
    std::map<std::string, std::string, std::less<>> texts;

    // The tables are part of the program. An error in one is our bug, and a test reads them.
    Language(std::string_view language, std::string_view table) : name(language) {
        for (const TextEntry &entry : parseTextTable(table))
            texts.emplace(entry.key, entry.shown());
    }
};

/// All languages, English first.
const std::array<Language, 2> &languages() {
    static const std::array<Language, 2> all{Language("en", embedded::text_en), Language("ja", embedded::text_ja)};
    return all;
}

const Language &languageOf(std::string_view locale) {
    const std::string_view code = locale.substr(0, locale.find_first_of("_-.@"));
    for (const Language &language : languages())
        if (language.name == code)
            return language;
    return languages().front();
}

/// The locale for messages, in the order of POSIX (XBD, 8.2): the first variable that is set and not empty.
std::string_view environmentLocale() {
    for (const char *variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char *locale = std::getenv(variable); locale && *locale)
            return locale;
    return "C";
}

std::atomic<const Language *> &currentLanguage() {
    static std::atomic<const Language *> current{&languageOf(environmentLocale())};
    return current;
}

std::string textIn(const Language &language, std::string_view key, std::string_view otherwise) {
    const auto found = language.texts.find(key);
    return found == language.texts.end() ? std::string(otherwise) : found->second;
}

} // namespace

std::string text(std::string_view key) {
    return text(key, key);
}

std::string text(std::string_view key, std::string_view englishDefault) {
    return textIn(*currentLanguage().load(), key, englishDefault);
}

std::string englishText(std::string_view key) {
    return textIn(languages().front(), key, key);
}

void setTextLocale(std::string_view locale) {
    currentLanguage() = &languageOf(locale);
}

std::string_view textLanguage() {
    return currentLanguage().load()->name;
}

} // namespace lumetwin
