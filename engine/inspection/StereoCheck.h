// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/EyePair.h"
#include "media/InputFile.h"
#include "media/Picture.h"
#include "model/StereoFindings.h"
#include "model/StereoLayout.h"

#include <functional>

namespace lumetwin {

/// Looks at the picture of a photo, or at five frames of a film, for a file with both eyes in one picture (side by side
/// or over-under) as the layout says. In other layouts nothing is examined. The frames of a film are compared on other
/// threads. Throws MediaError when the file cannot be read.
StereoFindings examine(const media::InputFile &file, const StereoLayout &layout);

/// The same for eyes that are in two pictures. Calls `next` until it returns empty pictures; the left one first.
StereoFindings examineEyes(const std::function<media::EyePair<media::Picture>()> &next, EyeArrangement arrangement);

} // namespace lumetwin
