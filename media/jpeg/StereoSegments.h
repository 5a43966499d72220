// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/StereoPacking.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace lumetwin::media::images {

/// What the content of a segment APP3 says of the two eyes in one picture. All of them return nothing for another
/// content, and where it ends early.

/// The block of JPEG stereo files (.jps): "_JPSJPS_", the size of a descriptor of 4 bytes, the descriptor, then the
/// size of a comment and the comment. The descriptor is a reserved byte, flags (1 half height, 2 half width, 4 left eye
/// first), the layout (1 interleaved, 2 side by side, 3 over-under, 4 anaglyph) and the type (0 mono, 1 stereo).
std::optional<StereoPacking> jpsPacking(std::span<const std::uint8_t> content);

/// Such a block, without a comment. Only for eyes side by side or over each other.
std::vector<std::uint8_t> jpsContent(const StereoPacking &packing);

/// Stim (CIPA DC-006): the mark and a zero, then a TIFF structure.
struct StimFacts {
    std::optional<StereoPacking> packing;
    std::optional<double> baseline; ///< metres
};

StimFacts stimFacts(std::span<const std::uint8_t> content);

} // namespace lumetwin::media::images
