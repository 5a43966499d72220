// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace lumetwin::test {

using Bytes = std::vector<std::uint8_t>;

inline Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes &part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

inline Bytes number(std::uint64_t value, int size) {
    Bytes bytes;
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    return bytes;
}

inline Bytes u32(std::uint32_t value) {
    return number(value, 4);
}
inline Bytes letters(std::string_view text) {
    return {text.begin(), text.end()};
}

inline Bytes box(std::string_view type, const Bytes &payload) {
    return joined({u32(static_cast<std::uint32_t>(payload.size() + 8)), letters(type), payload});
}

inline Bytes longBox(std::string_view type, const Bytes &payload) {
    return joined({u32(1), letters(type), number(payload.size() + 16, 8), payload});
}

inline Bytes fullBox(std::string_view type, const Bytes &payload, std::uint32_t versionAndFlags = 0) {
    return box(type, joined({u32(versionAndFlags), payload}));
}

} // namespace lumetwin::test
