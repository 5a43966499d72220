// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace lumetwin::media::images {

/// One directory of a TIFF structure in memory (TIFF 6.0, section 2): of Exif, of a multi-picture index, of Stim. It
/// reads nothing outside the structure and keeps nothing of it, so the bytes must outlive it.
class TagDirectory {
public:
    /// The first directory; nullopt where the bytes do not begin with a TIFF header, or end before the directory.
    static std::optional<TagDirectory> first(std::span<const std::uint8_t> structure);
    /// The directory after this one, or the one whose place is the value of a field.
    std::optional<TagDirectory> next() const;
    std::optional<TagDirectory> below(std::uint16_t tag) const;

    /// The first item of a field: a whole number or a fraction. nullopt where the field is missing, its type is
    /// another, or its value lies outside; for a fraction without a denominator, and for one of 32-bit ones only, by
    /// which cameras say "unknown".
    std::optional<double> number(std::uint16_t tag) const;
    /// The same for whole numbers.
    std::optional<std::uint32_t> whole(std::uint16_t tag) const;
    /// The value of a field in the structure's byte order; empty where the field is missing or its value lies outside.
    std::span<const std::uint8_t> value(std::uint16_t tag) const;

    bool bigEndian() const { return bigEndian_; }

private:
    struct Entry {
        std::uint16_t type = 0;
        std::span<const std::uint8_t> value;
    };

    static std::optional<TagDirectory> at(std::span<const std::uint8_t> structure, std::uint32_t place, bool bigEndian);
    std::optional<Entry> entry(std::uint16_t tag) const;
    std::uint32_t read(std::span<const std::uint8_t> bytes) const;

    std::span<const std::uint8_t> structure_;
    std::span<const std::uint8_t> entries_; ///< 12 bytes each
    std::uint32_t next_ = 0;
    bool bigEndian_ = false;
};

} // namespace lumetwin::media::images
