// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/texts/Words.h"
#include "model/StereoLayout.h"

#include <string>

namespace lumetwin {

/// "over-under, half height, right eye first"
Words layoutWords(const StereoLayout &layout);

/// "says the file", "says its name"
Words sourceWords(LayoutSource source);

/// The name of a projection that is not rectilinear, from its four-character code.
Words projectionWords(const std::string &projection);

} // namespace lumetwin
