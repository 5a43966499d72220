// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/BitDepth.h"
#include "model/Warning.h"

#include <vector>

namespace lumetwin {

/// The bits per sample of an output, 8 or 10, and what is to be said about it.
struct OutputDepth {
    int bits = 8;
    std::vector<Warning> notes;
};

/// sourceDepth: bits per sample of the source. deepest: the most that the encoder codes. A limit that belongs to the
/// codec, not to the library, is only told to who asked for ten bits.
OutputDepth outputDepth(BitDepth wish, int sourceDepth, int deepest, bool limitOfCodec = false);

/// The most bits per sample that spatial video is written with: 10, or 8 with a library that codes no more.
int deepestSpatialVideo();

} // namespace lumetwin
