// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"

#include <cstdint>
#include <vector>

namespace lumetwin::media::zimg {

/// The values that a plane's samples have at 16 bits in another range (ITU-T H.273, 8.3: limited luma and RGB from 16
/// to 235, limited chroma from 16 to 240, each times 2^(depth - 8)). Chroma is counted from its neutral, so that
/// reducing its depth by a shift keeps that exact: `targetDepth` is the depth that it will have.
std::vector<std::uint16_t> rangeTable(int depth, bool chroma, ColourRange from, ColourRange to, int targetDepth);

} // namespace lumetwin::media::zimg
