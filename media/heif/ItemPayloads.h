// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/heif/MetaBox.h"

#include <optional>

namespace lumetwin::media::heif {

/// Finds where items' bytes lie in the file, of one file after the other with one bound on the work.
class ItemPayloads {
public:
    explicit ItemPayloads(const MetaBox &meta);

    /// Nothing when the bytes are elsewhere or their description makes no sense.
    std::optional<HeifPayload> of(const Item &item) { return resolved(item, 0); }
    /// Counts pieces of payloads; throws bmff::FormatError beyond the bound.
    void count(std::size_t pieces);

private:
    std::optional<HeifPayload> resolved(const Item &item, int depth);
    std::optional<std::vector<HeifPayload::Extent>> container(const Item &item, const ItemLocation::Extent &extent,
                                                              int depth);

    const MetaBox &meta_;
    std::unordered_map<std::uint32_t, const ItemReference *> containers_; ///< by the contained item's id
    std::size_t left_ = maximumExtents;
};

} // namespace lumetwin::media::heif
