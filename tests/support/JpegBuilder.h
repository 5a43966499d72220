// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/media/bmff/BoxBuilder.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace lumetwin::test {

/// A number in one of the two byte orders.
inline Bytes ordered(std::uint64_t value, int size, bool bigEndian) {
    Bytes bytes = number(value, size);
    if (!bigEndian)
        std::ranges::reverse(bytes);
    return bytes;
}

/// A field of a TIFF directory; the value is in the structure's byte order.
struct TiffField {
    int tag = 0;
    int type = 0;
    std::uint32_t count = 1;
    Bytes value;
};

/// Writes TIFF structures in one byte order.
struct TiffBuilder {
    bool bigEndian = false;

    Bytes of(std::uint64_t value, int size) const { return ordered(value, size, bigEndian); }
    TiffField byteField(int tag, int value) const { return {tag, 1, 1, of(static_cast<std::uint64_t>(value), 1)}; }
    TiffField longField(int tag, std::uint32_t value) const { return {tag, 4, 1, of(value, 4)}; }
    TiffField fraction(int tag, std::int64_t above, std::int64_t below, int type = 5) const {
        return {tag, type, 1,
                joined({of(static_cast<std::uint64_t>(above), 4), of(static_cast<std::uint64_t>(below), 4)})};
    }
    static TiffField bytesField(int tag, const Bytes &value) {
        return {tag, 7, static_cast<std::uint32_t>(value.size()), value};
    }

    /// Directories one after another, each followed by its values.
    Bytes structure(const std::vector<std::vector<TiffField>> &directories) const {
        Bytes bytes = joined({letters(bigEndian ? "MM" : "II"), of(42, 2), of(8, 4)});
        for (const auto &fields : directories)
            bytes = joined({bytes, directory(fields, bytes.size(), &fields == &directories.back())});
        return bytes;
    }

private:
    Bytes directory(const std::vector<TiffField> &fields, std::size_t place, bool isLast) const {
        Bytes entries = of(fields.size(), 2);
        Bytes values;
        const std::size_t valuesPlace = place + 2 + 12 * fields.size() + 4;
        for (const TiffField &field : fields) {
            Bytes inPlace = field.value;
            if (inPlace.size() > 4) {
                inPlace = of(valuesPlace + values.size(), 4);
                values = joined({values, field.value, Bytes(field.value.size() % 2, 0)});
            }
            inPlace.resize(4);
            entries = joined({entries, of(static_cast<std::uint64_t>(field.tag), 2),
                              of(static_cast<std::uint64_t>(field.type), 2), of(field.count, 4), inPlace});
        }
        return joined({entries, of(isLast ? 0 : valuesPlace + values.size(), 4), values});
    }
};

inline Bytes jpegSegment(int marker, const Bytes &content) {
    return joined({{0xFF, static_cast<std::uint8_t>(marker)}, number(content.size() + 2, 2), content});
}

/// A JPEG file with one more segment at its beginning.
inline Bytes withSegment(const Bytes &jpeg, int marker, const Bytes &content) {
    return joined(
        {Bytes(jpeg.begin(), jpeg.begin() + 2), jpegSegment(marker, content), Bytes(jpeg.begin() + 2, jpeg.end())});
}

/// One picture of a Multi-Picture file: a JPEG file, and what the index and the picture itself say of it.
struct PicturePart {
    static constexpr std::uint32_t eye = 0x020002;

    Bytes jpeg;
    std::uint32_t attributes = eye;
    std::optional<std::uint32_t> number;
    std::vector<TiffField> more; ///< further fields of its own
};

/// One entry of the index, to be bent by tests.
struct IndexEntry {
    std::uint32_t attributes = 0;
    std::uint32_t size = 0;
    std::uint32_t offset = 0;
};

/// Builds Multi-Picture files (CIPA DC-007).
struct MultiPictureBuilder {
    TiffBuilder tiff;
    std::vector<PicturePart> parts;
    std::size_t gap = 0;                                 ///< bytes between the pictures
    std::function<void(std::vector<IndexEntry> &)> bend; ///< changes the index before it is written
    std::optional<std::uint32_t> claimedIndexSize;       ///< what the index says of its own size

    Bytes file() const {
        // The pictures' places depend on the size of the index only.
        std::vector<IndexEntry> index(parts.size());
        Bytes bytes;
        for (int round = 0; round < 2; ++round) {
            bytes.clear();
            std::vector<IndexEntry> places;
            for (const PicturePart &part : parts) {
                const Bytes picture = withIndex(part, index);
                places.push_back({part.attributes, static_cast<std::uint32_t>(picture.size()),
                                  static_cast<std::uint32_t>(bytes.empty() ? 0 : bytes.size() - header)});
                bytes = joined({bytes, picture, Bytes(gap, 0xFF)});
            }
            if (bend)
                bend(places);
            index = places;
        }
        return bytes;
    }

private:
    static constexpr std::size_t header = 2 + 4 + 4; ///< start of image, marker and length, mark

    Bytes withIndex(const PicturePart &part, const std::vector<IndexEntry> &index) const {
        std::vector<TiffField> own;
        if (part.number)
            own.push_back(tiff.longField(0xB101, *part.number));
        own.insert(own.end(), part.more.begin(), part.more.end());
        std::vector<std::vector<TiffField>> directories;
        if (&part == &parts.front())
            directories.push_back(indexFields(index));
        if (!own.empty())
            directories.push_back(own);
        if (directories.empty())
            return part.jpeg;
        return withSegment(part.jpeg, 0xE2, joined({letters({"MPF\0", 4}), tiff.structure(directories)}));
    }

    std::vector<TiffField> indexFields(const std::vector<IndexEntry> &index) const {
        Bytes entries;
        for (const IndexEntry &entry : index)
            entries = joined({entries, tiff.of(entry.attributes, 4), tiff.of(entry.size, 4), tiff.of(entry.offset, 4),
                              tiff.of(0, 4)});
        TiffField list = TiffBuilder::bytesField(0xB002, entries);
        list.count = claimedIndexSize.value_or(list.count);
        return {TiffBuilder::bytesField(0xB000, letters("0100")),
                tiff.longField(0xB001, static_cast<std::uint32_t>(index.size())), list};
    }
};

/// The content of a JPS block; `size` is what it says of its descriptor.
inline Bytes jpsBlock(int flags, int layout, int type = 1, int size = 4) {
    return joined(
        {letters("_JPSJPS_"),
         number(static_cast<std::uint64_t>(size), 2),
         {0, static_cast<std::uint8_t>(flags), static_cast<std::uint8_t>(layout), static_cast<std::uint8_t>(type)},
         number(0, 2)});
}

/// The content of a Stim segment.
inline Bytes stimBlock(const TiffBuilder &tiff, const std::vector<TiffField> &fields) {
    return joined({letters({"Stim\0\0", 6}), tiff.structure({fields})});
}

} // namespace lumetwin::test
