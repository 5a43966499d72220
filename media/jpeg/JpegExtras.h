// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/PhotoExtras.h"
#include "media/bmff/BoxReader.h"

namespace lumetwin::media::images {

/// What the marker segments of a JPEG file tell of its extras: those of its first image, and of the further ones that
/// its multi-picture index (CIPA DC-007) names. Damage ends the search.
PhotoExtras jpegExtras(const bmff::Source &source);

} // namespace lumetwin::media::images
