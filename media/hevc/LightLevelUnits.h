// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/LightLevels.h"

#include <cstdint>
#include <vector>

namespace lumetwin::media::hevc {

/// SEI units with the mastering display and the content light level (ITU-T H.265, D.2.28 and D.2.35), one for each that
/// is known.
std::vector<std::vector<std::uint8_t>> lightLevelUnits(const LightLevels &levels);

} // namespace lumetwin::media::hevc
