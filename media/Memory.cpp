// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/Memory.h"

#include <cstdlib>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace lumetwin::media {

LargeBlockScope::LargeBlockScope() noexcept {
#ifdef __GLIBC__
    // Stated once, the bound no longer rises with the blocks that are freed.
    constexpr int largeBlock = 256 * 1024;
    static const int stated = mallopt(M_MMAP_THRESHOLD, largeBlock);
    static_cast<void>(stated);
#endif
}

LargeBlockScope::~LargeBlockScope() {
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

} // namespace lumetwin::media
