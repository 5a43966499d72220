// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Warning.h"

#include <string>

namespace lumetwin {

/// The text of a warning in the user's language, in one line.
std::string warningText(const Warning &warning);

} // namespace lumetwin
