// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"
#include "media/OutputFile.h"

namespace lumetwin::media::images {

/// Grey and RGB; metadata as it is handed over.
void writePng(const OutputFile &file, const StillImage &image, const Cancellation &cancellation);

} // namespace lumetwin::media::images
