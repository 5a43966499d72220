// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/WrittenItems.h"

namespace lumetwin::media::heif {

std::uint64_t WrittenItems::Item::size() const {
    std::uint64_t sum = 0;
    for (const Piece &piece : pieces)
        sum += piece.head.size() + piece.body.size();
    return sum;
}

std::vector<const WrittenItems::Item *> WrittenItems::inDataOrder() const {
    std::vector<const Item *> order;
    for (const bool metadata : {true, false})
        for (const Item &item : items)
            if (item.isMetadata == metadata && !item.inMeta)
                order.push_back(&item);
    return order;
}

} // namespace lumetwin::media::heif
