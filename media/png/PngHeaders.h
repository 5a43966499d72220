// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/bmff/BoxReader.h"
#include "media/metadata/StillHeaders.h"

namespace lumetwin::media::images {

/// Reads the chunks of a PNG file besides its samples. The width of a file with sTER is that of its two eyes. Damage
/// ends the list. Compressed XMP is not read: writers do not
/// compress it.
StillHeaders readPngHeaders(const bmff::Source &source);

/// The columns between the two pictures of a file with sTER: the second one begins at a multiple of eight (Extensions
/// to the PNG specification, 1.3.0). 0 where the width cannot come from such a file.
int columnsBetweenEyes(int width);

} // namespace lumetwin::media::images
