// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/jpeg/MultiPicture.h"

#include <cmath>
#include <cstdlib>

using namespace lumetwin::media;

/// The bytes as a file, and as the structure of an index. Eyes are among the pictures, and what is said is a number.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const images::MultiPicture pictures = images::readMultiPicture(*bmff::fromMemory({data, size}));
    if (pictures.eyes.size() > pictures.all.size() || pictures.all.size() > 64)
        std::abort();
    if (pictures.baseline && !(*pictures.baseline > 0 && std::isfinite(*pictures.baseline)))
        std::abort();
    if (pictures.convergence && !std::isfinite(*pictures.convergence))
        std::abort();
    for (const images::IndexedPicture &picture : images::pictureIndex({data, size}, 100))
        if (picture.place != 0 && (picture.place <= 100 || picture.place > 100 + std::uint64_t{0xFFFFFFFF}))
            std::abort();
    images::viewpointFacts({data, size});
    return 0;
}
