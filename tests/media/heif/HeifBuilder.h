// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/media/bmff/BoxBuilder.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumetwin::test {

inline Bytes u8(int value) {
    return {static_cast<std::uint8_t>(value)};
}
inline Bytes u16(int value) {
    return number(static_cast<std::uint64_t>(value), 2);
}

inline Bytes joinedAll(const std::vector<Bytes> &parts) {
    Bytes all;
    for (const Bytes &part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

inline Bytes uuidBox(std::string_view hexadecimal, const Bytes &payload) {
    Bytes uuid;
    for (std::size_t at = 0; at < hexadecimal.size(); at += 2)
        uuid.push_back(static_cast<std::uint8_t>(std::stoi(std::string(hexadecimal.substr(at, 2)), nullptr, 16)));
    return box("uuid", joined({uuid, payload}));
}

inline constexpr std::string_view cminUuid = "22cc04c7d6d94e079d904eb6ecbaf3a3";
inline constexpr std::string_view cmexUuid = "4363e9145b7d4aab97aebea69803b434";
inline constexpr std::string_view disparityUuid = "de22508536cb436587432f8705e7c78a";

/// Builds a HEIF file box by box, for readers to be tried with. Everything is public and may be bent.
struct HeifBuilder {
    std::vector<Bytes> items;
    std::vector<Bytes> references;
    std::vector<Bytes> properties;
    std::vector<Bytes> associations;
    std::vector<Bytes> groups;
    std::vector<Bytes> locations;
    Bytes itemData;
    int primary = 1;
    std::uint32_t associationFlags = 0; ///< version and flags of ipma
    std::uint32_t locationVersion = 1;

    HeifBuilder &item(int id, std::string_view type = "hvc1", bool hidden = false, std::string_view contentType = {}) {
        Bytes fields = joined({u16(id), u16(0), letters(type), u8(0)});
        if (!contentType.empty())
            fields = joined({fields, letters(contentType), u8(0)});
        items.push_back(fullBox("infe", fields, 2u << 24 | (hidden ? 1 : 0)));
        return *this;
    }
    HeifBuilder &refer(std::string_view type, int from, const std::vector<int> &to) {
        Bytes ids;
        for (const int id : to)
            ids = joined({ids, u16(id)});
        references.push_back(box(type, joined({u16(from), u16(static_cast<int>(to.size())), ids})));
        return *this;
    }
    /// The index, from 1.
    int property(const Bytes &bytes) {
        properties.push_back(bytes);
        return static_cast<int>(properties.size());
    }
    HeifBuilder &associate(int id, const std::vector<int> &indexes) {
        Bytes list;
        for (const int index : indexes)
            list.push_back(static_cast<std::uint8_t>(index));
        associations.push_back(joined({u16(id), u8(static_cast<int>(indexes.size())), list}));
        return *this;
    }
    HeifBuilder &group(std::string_view type, int id, const std::vector<int> &entities) {
        Bytes ids;
        for (const int entity : entities)
            ids = joined({ids, u32(static_cast<std::uint32_t>(entity))});
        groups.push_back(fullBox(type, joined({u32(static_cast<std::uint32_t>(id)),
                                               u32(static_cast<std::uint32_t>(entities.size())), ids})));
        return *this;
    }
    /// One extent in the form of version 1 with 4-byte fields.
    HeifBuilder &place(int id, int method, std::uint32_t offset, std::uint32_t length) {
        locations.push_back(joined({u16(id), u16(method), u16(0), u16(1), u32(offset), u32(length)}));
        return *this;
    }

    static Bytes size(std::uint32_t width, std::uint32_t height) {
        return fullBox("ispe", joined({u32(width), u32(height)}));
    }

    std::vector<Bytes> children() const {
        std::vector<Bytes> list;
        list.push_back(fullBox("hdlr", joined({u32(0), letters("pict"), Bytes(13, 0)})));
        list.push_back(fullBox("pitm", u16(primary)));
        list.push_back(fullBox("iinf", joined({u16(static_cast<int>(items.size())), joinedAll(items)})));
        list.push_back(fullBox("iref", joinedAll(references)));
        list.push_back(
            box("iprp",
                joined({box("ipco", joinedAll(properties)),
                        fullBox("ipma",
                                joined({u32(static_cast<std::uint32_t>(associations.size())), joinedAll(associations)}),
                                associationFlags)})));
        list.push_back(box("grpl", joinedAll(groups)));
        list.push_back(box("idat", itemData));
        list.push_back(fullBox("iloc",
                               joined({u16(0x4400), u16(static_cast<int>(locations.size())), joinedAll(locations)}),
                               locationVersion << 24));
        return list;
    }

    Bytes file() const { return fileOf(children()); }

    static Bytes type() { return box("ftyp", joined({letters("heic"), u32(0), letters("heicmif1")})); }
    static Bytes fileOf(const std::vector<Bytes> &metaChildren) {
        return joined({type(), fullBox("meta", joinedAll(metaChildren)), box("mdat", Bytes(32, 7))});
    }
};

/// Two eyes as grids of hidden tiles, the right one first in the file, as a headset might write them.
inline HeifBuilder stereoGrids() {
    HeifBuilder heif;
    heif.primary = 6;
    heif.item(1, "hvc1", true).item(2, "hvc1", true).item(3, "grid");
    heif.item(4, "hvc1", true).item(5, "hvc1", true).item(6, "grid");
    heif.refer("dimg", 3, {1, 2}).refer("dimg", 6, {4, 5});
    const int size = heif.property(HeifBuilder::size(1000, 500));
    const int right = heif.property(uuidBox(cmexUuid, joined({u32(1), u32(63807)})));
    const int left = heif.property(uuidBox(cmexUuid, u32(0)));
    const int camera =
        heif.property(uuidBox(cminUuid, joined({u32(0x1e00), u32(0x2622d86e), u32(0x20000000), u32(0x20000000)})));
    const int disparity = heif.property(uuidBox(disparityUuid, u32(293)));
    heif.associate(3, {size, right, camera, disparity}).associate(6, {size, left, camera, disparity});
    heif.group("ster", 7, {6, 3});
    return heif;
}

} // namespace lumetwin::test
