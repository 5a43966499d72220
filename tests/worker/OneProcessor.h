// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sched.h>

namespace lumetwin::test {

/// Lets this thread run on the first of its processors only.
inline void useOneProcessor() {
    cpu_set_t allowed;
    sched_getaffinity(0, sizeof allowed, &allowed);
    int first = 0;
    while (first < CPU_SETSIZE - 1 && !CPU_ISSET(first, &allowed))
        ++first;
    CPU_ZERO(&allowed);
    CPU_SET(first, &allowed);
    sched_setaffinity(0, sizeof allowed, &allowed);
}

} // namespace lumetwin::test
