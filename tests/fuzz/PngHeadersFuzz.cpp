// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/png/PngHeaders.h"

#include <cstdlib>

using namespace lumetwin::media;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const images::StillHeaders headers = images::readPngHeaders(*bmff::fromMemory({data, size}));
    if (headers.width < 0 || headers.height < 0 || headers.exif.size() > size || headers.xmp.size() > size)
        std::abort();
    const int columns = images::columnsBetweenEyes(headers.width);
    if (columns < 0 || columns > 7 || (columns > 0 && (headers.width - columns) % 2 != 0))
        std::abort();
    return 0;
}
