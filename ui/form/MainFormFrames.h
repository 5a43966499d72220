// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionDirection.h"
#include "ui/widgets/Points.h"

namespace lumetwin {

/// The positions of the form's parts in its document, in points. The origin is the bottom left corner.
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
