// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/video/StereoEncoderSettings.h"
#include "media/EyePair.h"
#include "media/Placement.h"
#include "model/ConversionSettings.h"

#include <cstdint>

namespace lumetwin {

/// How the two eyes of a side-by-side frame become pictures of their own. Computed once per file.
struct EyeExtraction : media::EyePair<media::Placement> {
    /// The eyes are the frame's halves as they are: nothing is scaled.
    bool unscaled = true;
};

/// The left half of the source (the right one when swapped) is the left eye; an odd last column belongs to neither.
EyeExtraction eyeExtraction(const ConversionSettings &settings, const EyeSize &eye, std::int64_t sourceWidth,
                            std::int64_t sourceHeight);

/// The placement for a picture smaller than its source rectangle: what is missing stays as it is on the canvas.
media::Placement withinPicture(const media::Placement &placement, int width, int height);

} // namespace lumetwin
