// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/WindowSizes.h"

namespace lumetwin {

namespace {

constexpr QSize usualFrame(8, 44); // pixels that window managers put around a window, at most

} // namespace

WindowSizes windowSizes(const PointScale &scale, QSize available, int menuBar) {
    const QSize room = available - usualFrame;
    const QSize initial(scale.horizontal(720), scale.vertical(860) + menuBar);
    const QSize minimum(scale.horizontal(680), scale.vertical(760));
    return {initial.boundedTo(room), minimum.boundedTo(room)};
}

} // namespace lumetwin
