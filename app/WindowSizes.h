// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/widgets/Points.h"

#include <QSize>

namespace lumetwin {

/// Sizes of the main window in pixels, menu bar included.
struct WindowSizes {
    QSize initial;
    QSize minimum;
};

/// 720 × 860 points of content, at least 680 × 760; less only where the screen has no room for that.
/// available: what a window may use of the screen. menuBar: height in pixels.
WindowSizes windowSizes(const PointScale &scale, QSize available, int menuBar);

} // namespace lumetwin
