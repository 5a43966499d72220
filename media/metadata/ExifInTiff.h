// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/InputFile.h"
#include "media/OutputFile.h"
#include "media/metadata/ExifBlock.h"

#include <cstdint>
#include <vector>

namespace lumetwin::media::images {

/// The photograph's fields in a TIFF file, as an Exif block; empty where there are none. Never throws for what the file
/// holds.
std::vector<std::uint8_t> exifOfTiffFile(const InputFile &file);

/// Appends the directories of the photograph and the position to a little-endian TIFF file whose first directory has
/// fields for their places. Throws MediaError when the file cannot be written.
void addSubdirectories(const OutputFile &tiffFile, const ExifBlock &exif);

} // namespace lumetwin::media::images
