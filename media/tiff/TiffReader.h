// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"
#include "media/InputFile.h"

namespace lumetwin::media::images {

int tiffPageCount(const InputFile &file);
/// Of the first page, from its tags. Throws MediaError.
PixelSize tiffSize(const InputFile &file);
/// See ImageFile::read().
StillImage readTiff(const InputFile &file, const Cancellation &cancellation);

} // namespace lumetwin::media::images
