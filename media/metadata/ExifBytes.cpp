// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/metadata/ExifBytes.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace lumetwin::media::images {

namespace exif {

std::size_t itemSize(std::uint16_t type) {
    // BYTE ASCII SHORT LONG RATIONAL SBYTE UNDEFINED SSHORT SLONG SRATIONAL FLOAT DOUBLE IFD
    constexpr std::array<std::size_t, 14> sizes{0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};
    return type == 129 ? 1 : type < sizes.size() ? sizes[type] : 0; // 129: UTF-8, since Exif 3.0
}

std::size_t numberSize(std::uint16_t type) {
    constexpr std::array<std::size_t, 14> sizes{0, 1, 1, 2, 4, 4, 1, 1, 2, 4, 4, 4, 8, 4};
    return type < sizes.size() ? sizes[type] : 1;
}

std::uint32_t readNumber(const std::uint8_t *bytes, std::size_t size, bool bigEndian) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < size; ++i)
        number = number << 8 | bytes[bigEndian ? i : size - 1 - i];
    return number;
}

void writeNumber(std::uint8_t *bytes, std::size_t size, bool bigEndian, std::uint32_t number) {
    for (std::size_t i = 0; i < size; ++i, number >>= 8)
        bytes[bigEndian ? size - 1 - i : i] = static_cast<std::uint8_t>(number);
}

} // namespace exif

ExifLayout::ExifLayout(bool bigEndian, std::uint32_t base, std::uint32_t first)
    : bytes_(first), bigEndian_(bigEndian), base_(base), next_(first) {}

void ExifLayout::reserveRange(std::uint32_t from, std::uint32_t size) {
    keptFrom_ = from - base_;
    keptTo_ = keptFrom_ + size;
    bytes_.resize(std::max(bytes_.size(), keptTo_));
}

std::uint32_t ExifLayout::reserve(std::size_t size) {
    std::size_t place = (next_ + 1) / 2 * 2;
    if (place < keptTo_ && place + size > keptFrom_)
        place = (keptTo_ + 1) / 2 * 2;
    next_ = place + size;
    bytes_.resize(std::max(bytes_.size(), next_));
    return base_ + static_cast<std::uint32_t>(place);
}

void ExifLayout::placeValue(std::uint32_t entry, const ExifBlock::Field &field) {
    if (field.value.size() <= 4) {
        std::copy(field.value.begin(), field.value.end(), at(entry + 8));
        return;
    }
    const bool keepsPlace = field.tag == exif::makerNote && keptTo_ != 0;
    const std::uint32_t place =
        keepsPlace ? base_ + static_cast<std::uint32_t>(keptFrom_) : reserve(field.value.size());
    std::copy(field.value.begin(), field.value.end(), at(place));
    exif::writeNumber(at(entry + 8), 4, bigEndian_, place);
}

std::uint32_t ExifLayout::add(const ExifBlock::Directory &fields) {
    const std::uint32_t directory = reserve(2 + 12 * fields.size() + 4);
    exif::writeNumber(at(directory), 2, bigEndian_, static_cast<std::uint32_t>(fields.size()));
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::uint32_t entry = directory + 2 + 12 * static_cast<std::uint32_t>(i);
        exif::writeNumber(at(entry), 2, bigEndian_, fields[i].tag);
        exif::writeNumber(at(entry + 2), 2, bigEndian_, fields[i].type);
        exif::writeNumber(at(entry + 4), 4, bigEndian_, fields[i].count);
        placeValue(entry, fields[i]);
    }
    return directory;
}

void ExifLayout::patch(std::uint32_t directory, std::size_t field, std::uint32_t value) {
    exif::writeNumber(at(directory + 2 + 12 * static_cast<std::uint32_t>(field) + 8), 4, bigEndian_, value);
}

} // namespace lumetwin::media::images
