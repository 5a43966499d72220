// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/metadata/ExifBlock.h"

#include <cstdlib>

using lumetwin::media::images::ExifBlock;

/// What is written of a block can be read again and then stays as it is.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    ExifBlock block = ExifBlock::parse(std::span(data, size));
    const bool nothing = block.empty(); // what describes the picture alone is not read again
    block.describePicture(640, 480);
    block.describeSRGB();
    ExifBlock again = ExifBlock::parse(block.bytes());
    if (again.empty() != nothing || again.hasPosition() != block.hasPosition())
        std::abort();
    if (ExifBlock::parse(again.bytes()).bytes() != again.bytes())
        std::abort();
    again.photographBytes(1000);
    again.positionBytes(1000);
    return 0;
}
