// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/Memory.h"

#include <cstdlib>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace lumetwin::media {

LargeBlockScope::LargeBlockScope() noexcept {
#ifdef __GLIBC__
    // Tiles and strips are smaller and reuse the memory of the one before. Setting a fixed limit prevents the allocator
    // from raising it when such blocks are freed.
    constexpr int largeBlock = 4 << 20;
    constexpr int kept = 64 << 20;
    static const bool stated = mallopt(M_MMAP_THRESHOLD, largeBlock) != 0 && mallopt(M_TRIM_THRESHOLD, kept) != 0;
    static_cast<void>(stated);
#endif
}

LargeBlockScope::~LargeBlockScope() {
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

} // namespace lumetwin::media
