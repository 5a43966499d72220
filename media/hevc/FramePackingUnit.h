// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/StereoPacking.h"
#include "media/hevc/CodedUnits.h"

#include <cstdint>
#include <vector>

namespace lumetwin::media::hevc {

/// A whole SEI unit with a frame packing arrangement message (ITU-T H.264, D.1.25; H.265, D.2.16), which holds until
/// the next one. For eyes beside or above each other. Only H.265 can say that they are half.
std::vector<std::uint8_t> framePackingUnit(const StereoPacking &packing, Coding coding);

/// The place in a sample with start codes before its first slice, where messages belong; its end when it has none.
std::size_t beforeFirstSlice(NalBytes sample, Coding coding);

} // namespace lumetwin::media::hevc
