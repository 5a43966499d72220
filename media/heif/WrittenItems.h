// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/bmff/BoxWriter.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace lumetwin::media::heif {

using bmff::Bytes;

/// The items of a file that is written, and what its `meta` box says of them.
struct WrittenItems {
    /// A part of an item's payload: bytes of its own, then bytes of an image.
    struct Piece {
        Bytes head;
        std::span<const std::uint8_t> body;
    };
    struct Item {
        std::uint32_t id = 0;
        std::string_view type;
        bool hidden = false;
        bool isMetadata = false;
        std::string_view contentType; ///< of `mime`
        std::vector<Piece> pieces;
        bool inMeta = false;                  ///< the payload stands in `idat`, not in the media data
        std::vector<std::uint8_t> properties; ///< indexes from 1, the highest bit set for essential ones

        std::uint64_t size() const;
    };
    struct Reference {
        std::string_view type;
        std::uint32_t from = 0;
        std::vector<std::uint32_t> to;
    };

    std::vector<Item> items;
    std::vector<Reference> references;
    std::vector<Bytes> properties; ///< boxes
    std::uint32_t primary = 0;
    Bytes groups; ///< a box

    /// Those in the media data, as they lie there.
    std::vector<const Item *> inDataOrder() const;
};

} // namespace lumetwin::media::heif
