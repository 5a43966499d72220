// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/ItemPayloads.h"

#include <algorithm>

namespace lumetwin::media::heif {

namespace {

using Extent = HeifPayload::Extent;

// Items that lie in items that lie in items …
constexpr int deepestNesting = 4;

/// `length` bytes from `offset` on, of what the extents hold; length 0 stands for all that follow.
bool appendSlice(const std::vector<Extent> &from, std::uint64_t offset, std::uint64_t length, std::vector<Extent> &to) {
    const bool toTheEnd = length == 0;
    for (const Extent &extent : from) {
        if (offset >= extent.size) {
            offset -= extent.size;
            continue;
        }
        const std::uint64_t there = extent.size - offset;
        const std::uint64_t taken = toTheEnd ? there : std::min(there, length);
        to.push_back({extent.position + offset, taken});
        offset = 0;
        length -= toTheEnd ? 0 : taken;
        if (!toTheEnd && length == 0)
            return true;
    }
    return toTheEnd && offset == 0;
}

} // namespace

ItemPayloads::ItemPayloads(const MetaBox &meta) : meta_(meta) {
    for (const ItemReference &reference : meta.references)
        if (reference.type == bmff::fourCC("iloc"))
            containers_.emplace(reference.from, &reference);
}

void ItemPayloads::count(std::size_t pieces) {
    if (pieces > left_)
        throw bmff::FormatError("its items are in too many pieces");
    left_ -= pieces;
}

/// What an extent's offset counts in.
std::optional<std::vector<Extent>> ItemPayloads::container(const Item &item, const ItemLocation::Extent &extent,
                                                           int depth) {
    switch (item.location.constructionMethod) {
    case 0:
        return {{{0, meta_.fileSize}}};
    case 1:
        return {{{meta_.itemDataBegin, meta_.itemDataEnd - meta_.itemDataBegin}}};
    default:
        break;
    }
    const auto reference = containers_.find(item.id);
    const std::uint64_t number = std::max<std::uint64_t>(extent.index, 1);
    if (item.location.constructionMethod != 2 || reference == containers_.end() ||
        number > reference->second->to.size())
        return std::nullopt;
    const Item *other = meta_.item(reference->second->to[static_cast<std::size_t>(number - 1)]);
    std::optional<HeifPayload> payload = other ? resolved(*other, depth + 1) : std::nullopt;
    return payload ? std::optional(std::move(payload->extents)) : std::nullopt;
}

std::optional<HeifPayload> ItemPayloads::resolved(const Item &item, int depth) {
    if (!item.location.inThisFile || item.location.extents.empty() || depth > deepestNesting)
        return std::nullopt;
    HeifPayload payload;
    for (const ItemLocation::Extent &extent : item.location.extents) {
        count(1);
        const auto within = container(item, extent, depth);
        if (!within)
            return std::nullopt;
        const std::size_t before = payload.extents.size();
        count(within->size());
        if (!appendSlice(*within, extent.offset, extent.length, payload.extents))
            return std::nullopt;
        count(payload.extents.size() - before);
    }
    if (payload.extents.empty()) // each extent begins at the end of what it counts in
        return std::nullopt;
    return payload;
}

} // namespace lumetwin::media::heif
