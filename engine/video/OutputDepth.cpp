// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/OutputDepth.h"

#include "media/CodingDepth.h"

#include <algorithm>
#include <cstdint>

namespace lumetwin {

OutputDepth outputDepth(BitDepth wish, int sourceDepth, int deepest, bool limitOfCodec) {
    const bool wantsTen = wish == BitDepth::ten || (wish == BitDepth::automatic && sourceDepth > 8);
    OutputDepth depth{wantsTen ? std::min(10, deepest) : 8, {}};
    if (wantsTen && depth.bits < 10 && (wish == BitDepth::ten || !limitOfCodec))
        depth.notes.push_back({WarningKind::encoderDepth, {std::int64_t{depth.bits}}});
    if (sourceDepth > depth.bits)
        depth.notes.push_back({WarningKind::depthReduced, {std::int64_t{sourceDepth}, std::int64_t{depth.bits}}});
    return depth;
}

int deepestSpatialVideo() {
    return media::deepestSpatialVideo();
}

} // namespace lumetwin
