// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/widgets/Points.h"

#include <QSize>

namespace lumetwin {

/// The most that common window managers add around a window, in pixels.
inline constexpr QSize windowFrame(8, 44);

/// Sizes of the main window in pixels, menu bar included.
struct WindowSizes {
    QSize initial;
    QSize minimum;
};

/// The content is 720 × 860 points at first and at least 680 × 760, or less when the screen is too small. available:
/// the part of the screen that a window may use, in pixels. menuBar: height of the menu bar in pixels.
WindowSizes windowSizes(const PointScale &scale, QSize available, int menuBar);

} // namespace lumetwin
