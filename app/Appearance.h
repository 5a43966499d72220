// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPalette>

namespace lumetwin {

/// A dark palette for desktops that ask for one and have no theme for our toolkit.
QPalette darkPalette();

/// Follows the desktop's preference for light or dark where the toolkit's own theme does not.
void followUserAppearance();

} // namespace lumetwin
