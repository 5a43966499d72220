// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/hevc/NalUnits.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace lumetwin::media::x265 {

/// A video or sequence parameter set of a two-view 4:2:0 stream, with the conformance window (in the video parameter
/// set: that of the representation format, ITU-T H.265, F.7.3.2.1.2) set so that the given size is shown from the top
/// left. Nothing where the set is not of the expected kind.
std::optional<std::vector<std::uint8_t>> withConformanceWindow(hevc::NalBytes unit, int width, int height);

} // namespace lumetwin::media::x265
