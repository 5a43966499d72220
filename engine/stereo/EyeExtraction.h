// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/video/StereoEncoderSettings.h"
#include "media/EyePair.h"
#include "media/Placement.h"
#include "model/ConversionSettings.h"

#include <cstdint>

namespace lumetwin {

/// How the two eyes are cut out of a side-by-side frame. Computed once per file.
struct EyeExtraction : media::EyePair<media::Placement> {
    /// The eyes are exactly the halves of the frame, without scaling.
    bool unscaled = true;
};

/// The left half of the source (with swapped eyes the right half) is the left eye. An odd last column belongs to no
/// eye.
EyeExtraction eyeExtraction(const ConversionSettings &settings, const EyeSize &eye, std::int64_t sourceWidth,
                            std::int64_t sourceHeight);

/// The placement for a picture that is smaller than its source rectangle. The missing part of the canvas is not
/// changed.
media::Placement withinPicture(const media::Placement &placement, int width, int height);

} // namespace lumetwin
