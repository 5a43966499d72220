// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QMainWindow;

namespace lumetwin {

class AppDelegate;

/// Builds the menu bar: one menu, named after the program.
void installMainMenu(QMainWindow &window, AppDelegate &delegate);

} // namespace lumetwin
