// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <atomic>
#include <thread>

namespace lumetwin::media {

namespace details {
inline std::atomic<int> assumedProcessors = 0;
}

/// How many processors coders of films plan for: those that this process may use.
inline int processors() {
    const int assumed = details::assumedProcessors;
    return assumed > 0 ? assumed : static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
}

/// For tests and benchmarks: plan as if there were this many processors; 0 for those that there are.
inline void assumeProcessors(int count) {
    details::assumedProcessors = count;
}

} // namespace lumetwin::media
