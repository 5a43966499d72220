// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/WindowSizes.h"

namespace lumetwin {

WindowSizes windowSizes(const PointScale &scale, QSize available, int menuBar) {
    const QSize contentSpace = available - windowFrame;
    const QSize initial(scale.horizontal(720), scale.vertical(860) + menuBar);
    const QSize minimum(scale.horizontal(680), scale.vertical(760));
    return {initial.boundedTo(contentSpace), minimum.boundedTo(contentSpace)};
}

} // namespace lumetwin
