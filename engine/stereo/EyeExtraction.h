// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/stereo/SourceLayout.h"
#include "engine/video/StereoEncoderSettings.h"
#include "media/EyePair.h"
#include "media/Placement.h"
#include "model/ConversionSettings.h"

#include <cstdint>

namespace lumetwin {

/// How the two eyes are cut out of the pictures of a source. Computed once per file.
struct EyeExtraction : media::EyePair<media::Placement> {
    /// The eyes are exactly their cells in the picture, without scaling.
    bool unscaled = true;
};

/// The size of one eye in the output: the resize target, or the size in which the source shows an eye.
EyeSize eyeSize(const ConversionSettings &settings, const EyeCells &cells);

/// The placement of each cell on an eye of that size. With swapped eyes, the cell of the right eye is the left eye.
EyeExtraction eyeExtraction(const ConversionSettings &settings, const EyeSize &eye, const EyeCells &cells);

/// The placement for a picture that is smaller than its source rectangle. The missing part of the canvas is not
/// changed.
media::Placement withinPicture(const media::Placement &placement, int width, int height);

} // namespace lumetwin
