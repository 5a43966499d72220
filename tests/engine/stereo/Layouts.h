// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/StereoLayout.h"

namespace lumetwin::test {

inline constexpr StereoLayout sideBySide{.arrangement = EyeArrangement::sideBySide};
inline constexpr StereoLayout overUnder{.arrangement = EyeArrangement::overUnder};

} // namespace lumetwin::test
