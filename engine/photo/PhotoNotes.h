// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"
#include "model/Warning.h"

#include <vector>

namespace lumetwin {

/// What a photo's conversion leaves behind. The depths are in bits a sample: of the source's picture as it was read,
/// and the most that the output holds.
std::vector<Warning> photoNotes(const media::ImageFile &input, int depth, int outputDepth);

} // namespace lumetwin
