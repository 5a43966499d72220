// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"
#include "media/OutputFile.h"

namespace lumetwin::media::images {

/// Metadata as it is handed over, and a JPS block for a packing. Converts the samples itself, strip by strip.
void writeJpeg(const OutputFile &file, const StillImage &image, double quality,
               const std::optional<StereoPacking> &packing, const Cancellation &cancellation);

/// The quality of the JPEG library, 1 to 100, for a quality of 0.0 to 1.0.
int jpegQuality(double quality);

} // namespace lumetwin::media::images
