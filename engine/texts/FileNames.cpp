// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/FileNames.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace lumetwin {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD

struct Character {
    char32_t code = 0;
    std::size_t length = 0; ///< in bytes; 0 when they are no character
};

std::size_t encodedLength(std::uint8_t first) {
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first < 0xE0)
        return 2;
    if (first >= 0xE0 && first < 0xF0)
        return 3;
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

/// The character at the beginning of the text; over-long forms and surrogates are none.
Character firstCharacter(std::string_view text) {
    constexpr std::array<char32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
    constexpr std::array<std::uint8_t, 5> firstBits{0, 0x7F, 0x1F, 0x0F, 0x07};
    const auto first = static_cast<std::uint8_t>(text.front());
    const std::size_t length = encodedLength(first);
    if (length == 0 || length > text.size())
        return {};
    char32_t code = first & firstBits[length];
    for (std::size_t at = 1; at < length; ++at) {
        const auto byte = static_cast<std::uint8_t>(text[at]);
        if ((byte & 0xC0) != 0x80)
            return {};
        code = code << 6 | (byte & 0x3F);
    }
    if (code < smallest[length] || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
        return {};
    return {code, length};
}

bool isUnsafe(char32_t code) {
    struct Range {
        char32_t first, last;
    };
    constexpr std::array<Range, 6> unsafe{{
        {0x00, 0x1F},     // C0 controls
        {0x7F, 0x9F},     // delete and C1 controls
        {0x061C, 0x061C}, // Arabic letter mark
        {0x200E, 0x200F}, // direction marks
        {0x2028, 0x202E}, // line and paragraph separators, direction embeddings and overrides
        {0x2066, 0x2069}, // direction isolates
    }};
    return std::ranges::any_of(unsafe, [&](const Range &range) { return code >= range.first && code <= range.last; });
}

} // namespace

std::string lastPathComponent(const std::filesystem::path &file) {
    const std::filesystem::path name = file.has_filename() ? file.filename() : file.parent_path().filename();
    const std::u8string bytes = name.u8string();
    return {bytes.begin(), bytes.end()};
}

std::string printable(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        const std::size_t length = std::max<std::size_t>(character.length, 1);
        result += character.length == 0 || isUnsafe(character.code) ? replacement : text.substr(0, length);
        text.remove_prefix(length);
    }
    return result;
}

} // namespace lumetwin
