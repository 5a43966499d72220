// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionDirection.h"
#include "ui/widgets/Points.h"

namespace lumetwin {

/// Where the form's parts stand in its document, in points from the bottom left.
struct MainFormFrames {
    PointFrame startButton;
    PointFrame commonSection;
    PointFrame optionsSection;
    PointFrame outputSection;
    PointFrame inputSection;
    PointFrame directionSection;
    PointFrame header;
    double documentHeight = 0;

    static constexpr double documentWidth = 720;
};

MainFormFrames mainFormFrames(ConversionDirection direction, bool enableResize);

} // namespace lumetwin
