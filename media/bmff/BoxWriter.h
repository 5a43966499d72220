// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace lumetwin::media::heif {

using Bytes = std::vector<std::uint8_t>;

/// Collects big-endian fields.
class FieldWriter {
public:
    FieldWriter &number(std::uint64_t value, int size) {
        for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
            bytes_.push_back(static_cast<std::uint8_t>(value >> shift));
        return *this;
    }
    FieldWriter &u8(std::uint64_t value) { return number(value, 1); }
    FieldWriter &u16(std::uint64_t value) { return number(value, 2); }
    FieldWriter &u32(std::uint64_t value) { return number(value, 4); }
    FieldWriter &i32(std::int32_t value) { return number(static_cast<std::uint32_t>(value), 4); }
    FieldWriter &text(std::string_view characters) {
        bytes_.insert(bytes_.end(), characters.begin(), characters.end());
        return *this;
    }
    FieldWriter &append(std::span<const std::uint8_t> bytes) {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
        return *this;
    }
    const Bytes &bytes() const { return bytes_; }

private:
    Bytes bytes_;
};

/// A box with a 32-bit size (ISO/IEC 14496-12, 4.2).
inline Bytes box(std::string_view type, std::span<const std::uint8_t> payload) {
    return FieldWriter().u32(payload.size() + 8).text(type).append(payload).bytes();
}

inline Bytes fullBox(std::string_view type, std::uint32_t versionAndFlags, const FieldWriter &fields) {
    return box(type, FieldWriter().u32(versionAndFlags).append(fields.bytes()).bytes());
}

inline Bytes uuidBox(std::span<const std::uint8_t, 16> uuid, std::span<const std::uint8_t> payload) {
    return box("uuid", FieldWriter().append(uuid).append(payload).bytes());
}

} // namespace lumetwin::media::heif
