// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPalette>

namespace lumetwin {

/// A dark palette, for desktops that prefer dark colours but have no Qt theme.
QPalette darkPalette();

/// A palette of black, white and one colour for the selection, for desktops that prefer more contrast.
QPalette highContrastPalette(bool dark);

/// Follows the desktop's preferences for dark colours and for contrast, unless Qt uses the desktop's own theme.
void followUserAppearance();

} // namespace lumetwin
