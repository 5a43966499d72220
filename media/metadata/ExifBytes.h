// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/metadata/ExifBlock.h"

#include <cstddef>

namespace lumetwin::media::images {

namespace exif {
// Field types of TIFF 6.0, section 2.
inline constexpr std::uint16_t ascii = 2;
inline constexpr std::uint16_t shortNumber = 3;
inline constexpr std::uint16_t longNumber = 4;
inline constexpr std::uint16_t undefined = 7;
// Fields with offsets of other directories.
inline constexpr std::uint16_t photographDirectory = 0x8769;
inline constexpr std::uint16_t positionDirectory = 0x8825;
inline constexpr std::uint16_t interoperabilityDirectory = 0xA005;
inline constexpr std::uint16_t makerNote = 0x927C;

/// The size in bytes of one item of a type; 0 for unknown types.
std::size_t itemSize(std::uint16_t type);
/// The size in bytes of the numbers in an item of a type: the unit that is swapped for another byte order.
std::size_t numberSize(std::uint16_t type);

std::uint32_t readNumber(const std::uint8_t *bytes, std::size_t size, bool bigEndian);
void writeNumber(std::uint8_t *bytes, std::size_t size, bool bigEndian, std::uint32_t number);
} // namespace exif

/// Serialises directories and their values one after another.
class ExifLayout {
public:
    /// Offsets are relative to `base` bytes before the first byte; the first `first` bytes are already used.
    ExifLayout(bool bigEndian, std::uint32_t base, std::uint32_t first);

    /// Reserves a range of bytes for a value that keeps its offset.
    void reserveRange(std::uint32_t from, std::uint32_t size);

    /// Appends a directory with its values and returns its offset. Fields must be in order of their tags.
    std::uint32_t add(const ExifBlock::Directory &fields);
    /// Changes the 32-bit value of a field in an appended directory.
    void patch(std::uint32_t directory, std::size_t field, std::uint32_t value);

    std::vector<std::uint8_t> take() { return std::move(bytes_); }
    std::uint8_t *at(std::uint32_t offset) { return bytes_.data() + (offset - base_); }

private:
    std::uint32_t reserve(std::size_t size);
    void placeValue(std::uint32_t entry, const ExifBlock::Field &field);

    std::vector<std::uint8_t> bytes_;
    bool bigEndian_;
    std::uint32_t base_;
    std::size_t next_;
    std::size_t keptFrom_ = 0;
    std::size_t keptTo_ = 0;
};

} // namespace lumetwin::media::images
