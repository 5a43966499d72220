// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/StereoMovieFacts.h"
#include "media/bmff/BoxReader.h"

namespace lumetwin::media::bmff {

/// The facts of a movie in any source. The boxes below `vexu` are as platform-written movies have them. Throws
/// FormatError.
StereoMovieFacts readStereoMovieFacts(const Source &source);

} // namespace lumetwin::media::bmff
