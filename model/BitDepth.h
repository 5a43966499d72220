// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace lumetwin {

/// The bits per sample of the videos that are written.
enum class BitDepth {
    automatic, ///< 10 for sources of more than 8, otherwise 8
    eight,
    ten, ///< where the codec has them; H.264 is always written with 8
};

inline constexpr std::array allBitDepths{BitDepth::automatic, BitDepth::eight, BitDepth::ten};

} // namespace lumetwin
