// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/hevc/NalUnits.h"

#include <array>
#include <cstdint>
#include <optional>

namespace lumetwin::media::hevc {

/// The fields of a sequence parameter set that we need (ITU-T H.265, 7.3.2.2.1).
struct SequenceParameterSet {
    std::array<std::uint8_t, 12> profileTierLevel{}; ///< the general one
    int temporalLayers = 1;
    bool temporallyNested = false;
    int chromaFormat = 0; ///< 0 grey, 1 4:2:0, 2 4:2:2, 3 4:4:4
    int lumaDepth = 8;    ///< bits
    int chromaDepth = 8;
    int smallestCodingBlock = 3; ///< base 2 logarithm of the side in luma samples
};

/// Parses a whole NAL unit. In a layer above the base it may have the shorter form, which leaves format and profile to
/// the video parameter set (F.7.3.2.2.1); then these fields keep their defaults. nullopt when the set is damaged.
std::optional<SequenceParameterSet> readSequenceParameterSet(NalBytes unit);

} // namespace lumetwin::media::hevc
