// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/bmff/StereoMovieFactsReader.h"
#include "tests/support/Paths.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace lumetwin::media;
    try {
        bmff::readStereoMovieFacts(*bmff::fromMemory({data, size}));
    } catch (const bmff::FormatError &) {
        // Refusing is what it should do.
    }
    return 0;
}
