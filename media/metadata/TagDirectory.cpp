// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/metadata/TagDirectory.h"

#include "media/metadata/ExifBytes.h"

namespace lumetwin::media::images {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t headerSize = 8;
constexpr std::size_t entrySize = 12;
constexpr std::uint32_t unknown = 0xFFFFFFFF;
// Field types of TIFF 6.0, section 2, besides those in ExifBytes.h.
constexpr std::uint16_t byteNumber = 1;
constexpr std::uint16_t fraction = 5;
constexpr std::uint16_t signedFraction = 10;
constexpr std::uint16_t directoryPlace = 13;

/// A part of the bytes; nullopt where they end before.
std::optional<Bytes> part(Bytes bytes, std::uint64_t from, std::uint64_t size) {
    if (from > bytes.size() || size > bytes.size() - from)
        return std::nullopt;
    return bytes.subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(size));
}

} // namespace

std::uint32_t TagDirectory::read(Bytes bytes) const {
    return exif::readNumber(bytes.data(), bytes.size(), bigEndian_);
}

std::optional<TagDirectory> TagDirectory::first(Bytes structure) {
    if (structure.size() < headerSize || structure[0] != structure[1] || (structure[0] != 'I' && structure[0] != 'M'))
        return std::nullopt;
    const bool bigEndian = structure[0] == 'M';
    if (exif::readNumber(structure.data() + 2, 2, bigEndian) != 42)
        return std::nullopt;
    return at(structure, exif::readNumber(structure.data() + 4, 4, bigEndian), bigEndian);
}

std::optional<TagDirectory> TagDirectory::at(Bytes structure, std::uint32_t place, bool bigEndian) {
    TagDirectory directory;
    directory.structure_ = structure;
    directory.bigEndian_ = bigEndian;
    const auto count = part(structure, place, 2);
    if (place < headerSize || !count)
        return std::nullopt;
    const std::uint64_t size = std::uint64_t{entrySize} * directory.read(*count);
    const auto entries = part(structure, std::uint64_t{place} + 2, size);
    if (!entries)
        return std::nullopt;
    directory.entries_ = *entries;
    if (const auto next = part(structure, std::uint64_t{place} + 2 + size, 4))
        directory.next_ = directory.read(*next);
    return directory;
}

std::optional<TagDirectory> TagDirectory::next() const {
    return at(structure_, next_, bigEndian_);
}

std::optional<TagDirectory> TagDirectory::below(std::uint16_t tag) const {
    const auto place = whole(tag);
    return place ? at(structure_, *place, bigEndian_) : std::nullopt;
}

std::optional<TagDirectory::Entry> TagDirectory::entry(std::uint16_t tag) const {
    for (Bytes left = entries_; left.size() >= entrySize; left = left.subspan(entrySize)) {
        if (read(left.first(2)) != tag)
            continue;
        const auto type = static_cast<std::uint16_t>(read(left.subspan(2, 2)));
        const std::uint64_t size = std::uint64_t{read(left.subspan(4, 4))} * exif::itemSize(type);
        const auto value = size <= 4 ? left.subspan(8, static_cast<std::size_t>(size))
                                     : part(structure_, read(left.subspan(8, 4)), size);
        return value ? std::optional(Entry{type, *value}) : std::nullopt;
    }
    return std::nullopt;
}

Bytes TagDirectory::value(std::uint16_t tag) const {
    const auto found = entry(tag);
    return found ? found->value : Bytes{};
}

std::optional<std::uint32_t> TagDirectory::whole(std::uint16_t tag) const {
    const auto found = entry(tag);
    if (!found || found->value.empty())
        return std::nullopt;
    for (const std::uint16_t type : {byteNumber, exif::shortNumber, exif::longNumber, directoryPlace})
        if (found->type == type)
            return read(found->value.first(exif::itemSize(type)));
    return std::nullopt;
}

std::optional<double> TagDirectory::number(std::uint16_t tag) const {
    const auto found = entry(tag);
    if (!found || (found->type != fraction && found->type != signedFraction) || found->value.size() < 8)
        return whole(tag);
    const std::uint32_t above = read(found->value.first(4));
    const std::uint32_t below = read(found->value.subspan(4, 4));
    if (below == 0 || (above == unknown && below == unknown))
        return std::nullopt;
    if (found->type == signedFraction)
        return static_cast<double>(static_cast<std::int32_t>(above)) / static_cast<std::int32_t>(below);
    return static_cast<double>(above) / below;
}

} // namespace lumetwin::media::images
