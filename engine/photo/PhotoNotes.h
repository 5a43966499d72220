// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"
#include "model/Warning.h"

#include <vector>

namespace lumetwin {

/// Notes about what the conversion of a photo does not keep. depth, outputDepth: bits per sample, of the source's
/// picture as it was read, and the maximum of the output.
std::vector<Warning> photoNotes(const media::ImageFile &input, int depth, int outputDepth);

/// Whether a photo is of high dynamic range by its tags, and not by a profile, which every format can hold.
bool isHighDynamicRange(const media::StillImage &image);

} // namespace lumetwin
