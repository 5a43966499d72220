// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/MetaBoxWriter.h"

#include <unordered_map>

namespace lumetwin::media::heif {

using bmff::box;
using bmff::FieldWriter;
using bmff::fullBox;

namespace {

constexpr std::uint32_t hiddenFlag = 1;
constexpr std::uint32_t selfContainedFlag = 1;

Bytes itemList(const WrittenItems &written) {
    constexpr std::uint32_t entryVersion = 2u << 24;
    FieldWriter entries;
    entries.u16(written.items.size());
    for (const WrittenItems::Item &item : written.items) {
        FieldWriter fields;
        fields.u16(item.id).u16(0).text(item.type).u8(0);
        if (!item.contentType.empty())
            fields.text(item.contentType).u8(0);
        entries.append(fullBox("infe", entryVersion | (item.hidden ? hiddenFlag : 0), fields));
    }
    return fullBox("iinf", 0, entries);
}

Bytes itemReferences(const WrittenItems &written) {
    if (written.references.empty())
        return {};
    FieldWriter boxes;
    for (const WrittenItems::Reference &reference : written.references) {
        FieldWriter fields;
        fields.u16(reference.from).u16(reference.to.size());
        for (const std::uint32_t id : reference.to)
            fields.u16(id);
        boxes.append(box(reference.type, fields.bytes()));
    }
    return fullBox("iref", 0, boxes);
}

Bytes itemProperties(const WrittenItems &written) {
    FieldWriter container;
    for (const Bytes &property : written.properties)
        container.append(property);
    std::uint32_t count = 0;
    FieldWriter associations;
    for (const WrittenItems::Item &item : written.items) {
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

Bytes itemData(const WrittenItems &written) {
    FieldWriter payloads;
    for (const WrittenItems::Item &item : written.items)
        if (item.inMeta)
            for (const WrittenItems::Piece &piece : item.pieces)
                payloads.append(piece.head);
    return payloads.bytes().empty() ? Bytes{} : box("idat", payloads.bytes());
}

Bytes itemLocations(const WrittenItems &written, std::uint64_t dataBegin) {
    constexpr std::uint32_t version = 1u << 24;
    constexpr std::uint32_t fourByteFields = 0x4400; // offsets and lengths; no bases, no indexes
    std::unordered_map<const WrittenItems::Item *, std::uint64_t> places;
    std::uint64_t place = dataBegin;
    for (const WrittenItems::Item *item : written.inDataOrder()) {
        places.emplace(item, place);
        place += item->size();
    }
    std::uint64_t placeInMeta = 0;
    FieldWriter fields;
    fields.u16(fourByteFields).u16(written.items.size());
    for (const WrittenItems::Item &item : written.items) {
        fields.u16(item.id).u16(item.inMeta ? 1 : 0).u16(0).u16(1);
        fields.u32(item.inMeta ? placeInMeta : places.at(&item)).u32(item.size());
        if (item.inMeta)
            placeInMeta += item.size();
    }
    return fullBox("iloc", version, fields);
}

} // namespace

Bytes metaBox(const WrittenItems &written, std::uint64_t dataBegin) {
    FieldWriter fields;
    fields.append(fullBox("hdlr", 0, FieldWriter().u32(0).text("pict").number(0, 8).u32(0).u8(0)));
    const Bytes here = fullBox("url ", selfContainedFlag, {});
    fields.append(box("dinf", fullBox("dref", 0, FieldWriter().u32(1).append(here))));
    fields.append(fullBox("pitm", 0, FieldWriter().u16(written.primary)));
    fields.append(itemList(written));
    fields.append(itemReferences(written));
    fields.append(itemProperties(written));
    fields.append(written.groups);
    fields.append(itemData(written));
    fields.append(itemLocations(written, dataBegin));
    return fullBox("meta", 0, fields);
}

} // namespace lumetwin::media::heif
