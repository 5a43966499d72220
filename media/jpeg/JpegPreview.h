// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/InputFile.h"
#include "media/Picture.h"

namespace lumetwin::media::images {

/// See readPreview(). An empty picture when the colour space has no brightness of its own (CMYK). Throws MediaError.
Picture readJpegPreview(const InputFile &file, int width, int height);

} // namespace lumetwin::media::images
