// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/StereoFindings.h"
#include "model/StereoLayout.h"
#include "model/Warning.h"

#include <vector>

namespace lumetwin {

/// The disparity adjustment that brings the far parts of a picture 2 % of the width behind the screen, in percent of
/// the width. A positive one moves everything backward: disparities are shown plus the adjustment. (Photos of headsets,
/// whose lenses are parallel so that everything is in front of the screen, have one of +2.9 %.) Within the range of the
/// setting, rounded to its decimals.
double chosenAdjustment(const DisparityFigures &disparity);

/// What to say of a file that is read in this layout and shown with this adjustment (percent of the width). Limits: far
/// parts at most 2 % behind, near parts at most 1 % in front, the eyes level within 0.25 % of the width.
std::vector<Warning> stereoWarnings(const StereoFindings &findings, const StereoLayout &layout, double adjustment = 0);

} // namespace lumetwin
