// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/hevc/NalUnits.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace lumetwin::media::x265 {

/// A video or sequence parameter set of a two-view 4:2:0 stream with its conformance window set so that the given size
/// is shown from the top left. (In the video parameter set that is the window of the representation format, ITU-T
/// H.265, F.7.3.2.1.2.) nullopt when the set is not as expected.
std::optional<std::vector<std::uint8_t>> withConformanceWindow(hevc::NalBytes unit, int width, int height);

} // namespace lumetwin::media::x265
