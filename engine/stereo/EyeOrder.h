// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/stereo/StereoEvidence.h"
#include "media/EyePair.h"

#include <span>

namespace lumetwin {

/// What tells in one pair of pictures whether the left eye is the left one. Positive: it is; negative: the eyes are
/// swapped; near 0: unknown.
struct EyeOrderCues {
    /// Correlation of nearness with the height in the picture: what is lower is mostly nearer. -1 to 1.
    double slope = 0;
    /// Beside a near thing, each eye sees a strip of the background that the other does not; in the left eye it is on
    /// the left. The surplus of edges on the right end of strips that only the left eye sees. -1 to 1.
    double occlusion = 0;
    double certainty = 0; ///< of `occlusion`, in standard deviations from 0
    int strips = 0;       ///< number of rows of strips that were found
};

EyeOrderCues eyeOrderCues(const media::EyePair<LumaPlane> &planes, const StereoEvidence &evidence);

/// Whether the slope alone allows that the eyes are swapped.
bool mayBeSwapped(const EyeOrderCues &cues);

/// Whether both cues of each look at a file say that its eyes are swapped, and the looks together are certain.
bool areSwapped(std::span<const EyeOrderCues> cues);

} // namespace lumetwin
