// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media {

/// Something that each eye has.
template <typename Value> struct EyePair {
    Value left{};
    Value right{};

    bool operator==(const EyePair &) const = default;
};

} // namespace lumetwin::media
