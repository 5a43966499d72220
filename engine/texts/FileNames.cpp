// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/FileNames.h"

#include <utf8.h>

#include <algorithm>
#include <array>

namespace lumetwin {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD

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
    for (auto at = text.begin(); at != text.end();) {
        for (const auto invalid = utf8::find_invalid(at, text.end()); at != invalid;) {
            const auto begin = at;
            result += isUnsafe(utf8::unchecked::next(at)) ? replacement : std::string_view(begin, at);
        }
        if (at != text.end()) {
            result += replacement;
            ++at;
        }
    }
    return result;
}

} // namespace lumetwin
