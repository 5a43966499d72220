// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin {

/// Registers accessible interfaces for the widgets of this program: sliders with decimal values, drop targets that
/// report their content, the progress sheet as a dialog, and sections as groups. Call it once.
void installAccessibility();

} // namespace lumetwin
