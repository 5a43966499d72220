// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/confinement/Limits.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace lumetwin::worker {
namespace {

constexpr rlim_t gibibyte = rlim_t{1} << 30;

/// Standard streams, channel, input, output, and a few more.
constexpr rlim_t mostDescriptors = 32;
/// About a day of video at 100 Mbit/s.
constexpr rlim_t largestOutput = 1024 * gibibyte;
/// Enough for several of the largest pictures (2 GiB each).
constexpr rlim_t leastMemory = 8 * gibibyte;
/// Additional address space: libraries, and what the allocator and threads reserve without using it.
constexpr rlim_t reserved = 16 * gibibyte;
constexpr rlim_t reservedForProcessor = gibibyte;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool underSanitizer = true;
#else
constexpr bool underSanitizer = false;
#endif

/// Lowers a limit. A limit that is already lower is kept.
void limit(decltype(RLIMIT_CORE) resource, rlim_t value) {
    rlimit now{};
    if (getrlimit(resource, &now) != 0)
        throw std::system_error(errno, std::generic_category(), "getrlimit");
    const rlim_t lowest = std::min({value, now.rlim_cur, now.rlim_max});
    const rlimit lowered{.rlim_cur = lowest, .rlim_max = lowest};
    if (setrlimit(resource, &lowered) != 0)
        throw std::system_error(errno, std::generic_category(), "setrlimit");
}

/// The machine's memory in bytes, 0 if unknown.
rlim_t memoryOfMachine() {
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long size = sysconf(_SC_PAGESIZE);
    return pages > 0 && size > 0 ? static_cast<rlim_t>(pages) * static_cast<rlim_t>(size) : 0;
}

void limitMemory() {
    const rlim_t memory = std::max(leastMemory, memoryOfMachine());
    limit(RLIMIT_DATA, memory);
    limit(RLIMIT_AS, memory + reserved + reservedForProcessor * std::thread::hardware_concurrency());
}

/// When the machine runs out of memory, the kernel kills this process first.
void preferForOutOfMemoryKill() {
    std::ofstream("/proc/self/oom_score_adj") << 1000;
}

} // namespace

bool limitResources() {
    preferForOutOfMemoryKill();
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_NOFILE, mostDescriptors);
    limit(RLIMIT_FSIZE, largestOutput);
    limit(RLIMIT_MEMLOCK, 0);
    limit(RLIMIT_MSGQUEUE, 0);
    if (!underSanitizer)
        limitMemory();
    return !underSanitizer;
}

} // namespace lumetwin::worker
