// SPDX-License-Identifier: GPL-3.0-or-later
// The boxes of `meta`, in the order that platform-written files have.
#include "media/heif/FileLayout.h"

#include <unordered_map>

namespace lumetwin::media::heif {

using bmff::box;
using bmff::FieldWriter;
using bmff::fullBox;

namespace {

constexpr std::uint32_t hiddenFlag = 1;
constexpr std::uint32_t selfContainedFlag = 1;

} // namespace

Bytes FileLayout::meta(std::uint64_t dataBegin) const {
    FieldWriter fields;
    fields.append(fullBox("hdlr", 0, FieldWriter().u32(0).text("pict").number(0, 8).u32(0).u8(0)));
    const Bytes here = fullBox("url ", selfContainedFlag, {});
    fields.append(box("dinf", fullBox("dref", 0, FieldWriter().u32(1).append(here))));
    fields.append(fullBox("pitm", 0, FieldWriter().u16(primary_)));
    fields.append(itemList());
    fields.append(itemReferences());
    fields.append(itemProperties());
    fields.append(groups_);
    fields.append(itemData());
    fields.append(itemLocations(dataBegin));
    return fullBox("meta", 0, fields);
}

Bytes FileLayout::itemList() const {
    constexpr std::uint32_t entryVersion = 2u << 24;
    FieldWriter entries;
    entries.u16(items_.size());
    for (const Item &item : items_) {
        FieldWriter fields;
        fields.u16(item.id).u16(0).text(item.type).u8(0);
        if (!item.contentType.empty())
            fields.text(item.contentType).u8(0);
        entries.append(fullBox("infe", entryVersion | (item.hidden ? hiddenFlag : 0), fields));
    }
    return fullBox("iinf", 0, entries);
}

Bytes FileLayout::itemReferences() const {
    if (references_.empty())
        return {};
    FieldWriter boxes;
    for (const Reference &reference : references_) {
        FieldWriter fields;
        fields.u16(reference.from).u16(reference.to.size());
        for (const std::uint32_t id : reference.to)
            fields.u16(id);
        boxes.append(box(reference.type, fields.bytes()));
    }
    return fullBox("iref", 0, boxes);
}

Bytes FileLayout::itemProperties() const {
    FieldWriter container;
    for (const Bytes &property : properties_)
        container.append(property);
    std::uint32_t count = 0;
    FieldWriter associations;
    for (const Item &item : items_) {
        if (item.properties.empty())
            continue;
        ++count;
        associations.u16(item.id).u8(item.properties.size()).append(item.properties);
    }
    return box("iprp", FieldWriter()
                           .append(box("ipco", container.bytes()))
                           .append(fullBox("ipma", 0, FieldWriter().u32(count).append(associations.bytes())))
                           .bytes());
}

Bytes FileLayout::itemData() const {
    FieldWriter payloads;
    for (const Item &item : items_)
        if (item.inMeta)
            for (const Piece &piece : item.pieces)
                payloads.append(piece.head);
    return payloads.bytes().empty() ? Bytes{} : box("idat", payloads.bytes());
}

Bytes FileLayout::itemLocations(std::uint64_t dataBegin) const {
    constexpr std::uint32_t version = 1u << 24;
    constexpr std::uint32_t fourByteFields = 0x4400; // offsets and lengths; no bases, no indexes
    std::unordered_map<const Item *, std::uint64_t> places;
    std::uint64_t place = dataBegin;
    for (const Item *item : inDataOrder()) {
        places.emplace(item, place);
        place += item->size();
    }
    std::uint64_t placeInMeta = 0;
    FieldWriter fields;
    fields.u16(fourByteFields).u16(items_.size());
    for (const Item &item : items_) {
        fields.u16(item.id).u16(item.inMeta ? 1 : 0).u16(0).u16(1);
        fields.u32(item.inMeta ? placeInMeta : places.at(&item)).u32(item.size());
        if (item.inMeta)
            placeInMeta += item.size();
    }
    return fullBox("iloc", version, fields);
}

} // namespace lumetwin::media::heif
