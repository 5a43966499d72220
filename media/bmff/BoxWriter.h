// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/bmff/BigEndian.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace lumetwin::media::bmff {

using Bytes = std::vector<std::uint8_t>;

/// Appends big-endian fields.
class FieldWriter {
public:
    FieldWriter &number(std::uint64_t value, std::size_t size) {
        bytes_.resize(bytes_.size() + size);
        putBigEndian(std::span(bytes_).last(size), value);
        return *this;
    }
    FieldWriter &u8(std::uint64_t value) { return number(value, 1); }
    FieldWriter &u16(std::uint64_t value) { return number(value, 2); }
    FieldWriter &u32(std::uint64_t value) { return number(value, 4); }
    FieldWriter &i32(std::int32_t value) { return number(static_cast<std::uint32_t>(value), 4); }
    FieldWriter &zeros(std::size_t count) {
        bytes_.resize(bytes_.size() + count);
        return *this;
    }
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

inline Bytes box(std::string_view type, const FieldWriter &fields) {
    return box(type, fields.bytes());
}

inline Bytes fullBox(std::string_view type, std::uint32_t versionAndFlags, const FieldWriter &fields) {
    return box(type, FieldWriter().u32(versionAndFlags).append(fields.bytes()));
}

inline Bytes uuidBox(std::span<const std::uint8_t, 16> uuid, std::span<const std::uint8_t> payload) {
    return box("uuid", FieldWriter().append(uuid).append(payload));
}

} // namespace lumetwin::media::bmff
