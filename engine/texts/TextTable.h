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
    std::string translation; ///< msgstr; empty where there is none yet, or only a fuzzy one
    bool isFormat = false;   ///< flagged c-format: holds printf placeholders

    /// What is shown for the key.
    const std::string &shown() const { return translation.empty() ? english : translation; }
};

/// A table that is not well formed: "line 12: …".
class TextTableError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a gettext PO file (GNU gettext manual, "The Format of PO Files") in its entries' order, without the header
/// entry. Strict: every entry has one key, one msgid and one msgstr, no key comes twice; there are no plural forms.
/// Throws TextTableError.
std::vector<TextEntry> parseTextTable(std::string_view po);

} // namespace lumetwin
