// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionInput.h"
#include "model/StereoFindings.h"
#include "model/StereoLayout.h"

namespace lumetwin {

/// Looks at the picture of a photo, or at five frames of a film, whose eyes lie as the layout says. When both are in
/// one picture, and are not seen there, they are also looked for side by side and over-under. Layouts that no decoder
/// reads are not examined. The frames of a film are compared on other threads. Throws MediaError when the file cannot
/// be read.
StereoFindings examine(const ConversionInput &input, const StereoLayout &layout);

} // namespace lumetwin
