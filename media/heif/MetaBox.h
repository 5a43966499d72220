// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/bmff/BoxReader.h"
#include "media/heif/ItemProperties.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace lumetwin::media::heif {

struct Item {
    std::uint32_t id = 0;
    std::uint32_t type = 0;
    bool hidden = false;
    bool encrypted = false;                ///< protected in some way (`ipro`)
    std::vector<std::uint16_t> properties; ///< indexes into MetaBox::properties, from 1, in order; 0 is none
};

struct ItemReference {
    std::uint32_t type = 0;
    std::uint32_t from = 0;
    std::vector<std::uint32_t> to;
};

/// A group of type `ster` or `altr`; other groups are ignored.
struct EntityGroup {
    std::uint32_t type = 0;
    std::uint32_t id = 0;
    std::vector<std::uint32_t> entities;
};

/// The parsed boxes of a file's `meta` box, without interpretation.
struct MetaBox {
    std::vector<Item> items;                                    ///< in the order of `iinf`
    std::unordered_map<std::uint32_t, std::size_t> itemIndexes; ///< by id
    std::optional<std::uint32_t> primaryItem;
    std::vector<ItemReference> references;
    std::vector<Property> properties;
    std::vector<EntityGroup> groups;
    bool hasMovie = false; ///< the file also contains a movie or an image sequence

    const Item *item(std::uint32_t id) const;
};

/// Limits for a file; more is an error.
inline constexpr std::size_t maximumItems = 65'536;
inline constexpr std::size_t maximumReferences = 262'144;   ///< ids referred to, in all
inline constexpr std::size_t maximumAssociations = 262'144; ///< of properties with items, in all
inline constexpr std::size_t maximumGroups = 256;
inline constexpr std::size_t maximumEntities = 65'536; ///< in all groups

/// Throws bmff::FormatError.
MetaBox readMetaBox(const bmff::Source &source);

} // namespace lumetwin::media::heif
