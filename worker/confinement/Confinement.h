// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace lumetwin::worker {

/// How a process is confined.
struct ConfinementReport {
    int landlock = 0;           ///< version of the kernel's interface; 0 if the kernel has none
    bool systemCalls = false;   ///< the list of blocked system calls is active
    bool memoryLimited = false; ///< false with sanitizers, which reserve too much memory

    bool isFull() const { return landlock > 0 && systemCalls && memoryLimited; }
    bool operator==(const ConfinementReport &) const = default;
};

struct ConfinementOptions {
    bool landlock = true; ///< false in tests that simulate an old kernel
};

// Confinement takes away what work on a hostile file does not need: new privileges, files, the network, other
// processes, unlimited memory. Open descriptors stay usable. Forked processes and threads inherit it. It has two
// parts, because the first one takes milliseconds. Both throw std::system_error if system calls cannot be blocked:
// without Landlock, that is the only protection.

/// The first part, for the process that forks workers. It keeps what forking and the second part need.
ConfinementReport confineBeforeForking();

/// The rest, for a worker. Must be called before its first thread is started and before the first byte of a file is
/// read. Adds to the report.
void confineWorker(ConfinementReport &report, const ConfinementOptions &options = {});

/// A description in English such as "system calls, Landlock (version 7), memory limit".
std::string describe(const ConfinementReport &report);

} // namespace lumetwin::worker
