// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>

namespace lumetwin {

/// The name of the desktop entry and of the icon in the desktop's icon theme.
inline constexpr char applicationId[] = LUMETWIN_ID;

/// The program's icon, drawn from the picture in its resources.
QIcon applicationIcon();

} // namespace lumetwin
