// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/jpeg/JpegExtras.h"

#include <cstdlib>

using namespace lumetwin::media;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const auto source = bmff::fromMemory({data, size});
    if (images::jpegExtras(*source) != images::jpegExtras(*source))
        std::abort();
    return 0;
}
