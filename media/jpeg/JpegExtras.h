// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/PhotoExtras.h"
#include "media/bmff/BoxReader.h"

namespace lumetwin::media::images {

/// The extras of a JPEG file according to its marker segments: those of its first image, and of the other images in its
/// multi-picture index (CIPA DC-007). Damage ends the search.
PhotoExtras jpegExtras(const bmff::Source &source);

} // namespace lumetwin::media::images
