// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>

namespace lumetwin {

/// Icons that are sharp at any size and device pixel ratio: an exclamation mark in a triangle, and an i in a disc.
QIcon warningIcon();
QIcon informationIcon();

} // namespace lumetwin
