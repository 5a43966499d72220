// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin {

/// Tells the accessibility bus what the form's own widgets are: sliders with decimal values, drop targets that tell
/// what they hold, and a progress sheet that is a dialog. Called once.
void installAccessibility();

} // namespace lumetwin
