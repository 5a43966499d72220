// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

namespace lumetwin::media::bmff {

/// An unsigned number of 0 to 8 bytes, the highest first.
inline std::uint64_t bigEndian(std::span<const std::uint8_t> bytes) {
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes)
        value = value << 8 | byte;
    return value;
}

inline void putBigEndian(std::span<std::uint8_t> bytes, std::uint64_t value) {
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte, value >>= 8)
        *byte = static_cast<std::uint8_t>(value);
}

} // namespace lumetwin::media::bmff
