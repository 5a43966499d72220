// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionInput.h"
#include "engine/preview/StereoPreview.h"
#include "media/OutputFile.h"

namespace lumetwin {

/// Draws the eyes of a file as a conversion would take them: first the left eye's pixels, then the right eye's (see
/// PreviewPicture), from the beginning of the output. Nothing is cut off behind them. 10-bit and HDR sources are
/// converted without tone mapping. A layout that cannot be read, or whose second eye is not there, gives the whole
/// picture as the only eye. Throws MediaError or ProcessorError when the file cannot be read, or its eyes differ in
/// size.
PreviewFacts drawPreview(const ConversionInput &input, const PreviewRequest &request, const media::OutputFile &pixels);

} // namespace lumetwin
