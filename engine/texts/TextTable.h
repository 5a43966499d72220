// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace lumetwin {

/// One entry of a text table: a gettext PO entry whose msgctxt is the key.
struct TextEntry {
    std::string key;
    std::string english;     ///< msgid
    std::string translation; ///< msgstr; empty when it is missing or fuzzy
    bool isFormat = false;   ///< marked as c-format: contains printf placeholders

    /// The translation, or the English text when there is none.
    const std::string &shown() const { return translation.empty() ? english : translation; }
};

/// A syntax error in a table. The message begins with the line, such as "line 12: ".
class TextTableError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Parses a gettext PO file (GNU gettext manual, "The Format of PO Files"). Returns the entries in their order, without
/// the header entry. Strict: each entry needs one key, one msgid and one msgstr; keys must be unique; plural forms are
/// not supported. Throws TextTableError.
std::vector<TextEntry> parseTextTable(std::string_view po);

} // namespace lumetwin
