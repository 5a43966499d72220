// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/bmff/BoxReader.h"
#include "media/metadata/StillHeaders.h"

namespace lumetwin::media::images {

/// Reads the segments of a file's first image. The JPS block is believed before Stim.
StillHeaders readJpegHeaders(const bmff::Source &source);

} // namespace lumetwin::media::images
