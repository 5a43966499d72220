// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"

#include <cstdint>
#include <vector>

namespace lumetwin::media::zimg {

/// A table that converts a plane's samples to 16 bits in another range (ITU-T H.273, 8.3: limited luma and RGB from 16
/// to 235, limited chroma from 16 to 240, each times 2^(depth - 8)). Chroma is relative to its neutral value, so that
/// reducing its depth by a shift keeps that exact. targetDepth: the later depth.
std::vector<std::uint16_t> rangeTable(int depth, bool chroma, ColourRange from, ColourRange to, int targetDepth);

} // namespace lumetwin::media::zimg
