// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPalette>

namespace lumetwin {

/// A dark palette for desktops that ask for one and have no theme for our toolkit.
QPalette darkPalette();

/// Two colours and one for what is chosen, for desktops that ask for more contrast.
QPalette highContrastPalette(bool dark);

/// Follows the desktop's preferences for light or dark and for contrast where the toolkit's own theme does not.
void followUserAppearance();

} // namespace lumetwin
