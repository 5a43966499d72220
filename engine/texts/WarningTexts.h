// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Warning.h"

#include <string>

namespace lumetwin {

/// A warning in words of the user's language, one line.
std::string warningText(const Warning &warning);

} // namespace lumetwin
