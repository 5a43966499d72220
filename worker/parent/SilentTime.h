// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>

namespace lumetwin::worker {

/// Part of a process's life.
struct LifePeriod {
    std::chrono::milliseconds length{0};
    std::chrono::milliseconds processorTime{0}; ///< of all its threads
    bool isReady = false;                       ///< at its end a thread ran, or was ready to run
};

/// How much of a period counts as silence. A process that is ready to run but does not get the processor, on a machine
/// with other work, is not to blame for that: only the time in which it ran counts.
std::chrono::milliseconds countedSilence(const LifePeriod &period);

/// Adds up for how long a process has been silent.
class SilentTime {
public:
    explicit SilentTime(pid_t process) : process_(process) {}

    /// It was silent for this time more. Returns the sum of what countedSilence() counts, about twice a second a new
    /// one.
    std::chrono::milliseconds add(std::chrono::milliseconds waited);
    /// It gave a sign of life.
    void reset();

private:
    pid_t process_;
    std::chrono::milliseconds counted_{0};
    std::chrono::milliseconds waited_{0}; ///< not counted yet
    std::optional<std::chrono::milliseconds>
        processorTime_; ///< of the process, at the beginning of what is not counted
};

} // namespace lumetwin::worker
