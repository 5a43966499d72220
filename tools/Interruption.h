// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <csignal>

namespace lumetwin::batch {

/// While it lives, the first Ctrl+C (or SIGTERM, or a closed terminal) sets a flag; a second one ends the process as
/// if nobody had listened. Signals that were ignored before stay ignored. There is one at a time.
class Interruption {
public:
    explicit Interruption(std::atomic<bool> &flag);
    ~Interruption();
    Interruption(const Interruption &) = delete;
    Interruption &operator=(const Interruption &) = delete;

private:
    static constexpr std::array signals{SIGINT, SIGTERM, SIGHUP};
    std::array<struct sigaction, signals.size()> before_{};
};

} // namespace lumetwin::batch
