// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <csignal>

namespace lumetwin::batch {

/// While the object exists, the first Ctrl+C, SIGTERM or SIGHUP (closed terminal) sets a flag. A second one ends the
/// process in the default way. Signals that were ignored before stay ignored. Only one object may exist at a time.
class Interruption {
public:
    explicit Interruption(std::atomic<bool> &flag);
    ~Interruption();
    Interruption(const Interruption &) = delete;
    Interruption &operator=(const Interruption &) = delete;

private:
    static constexpr std::array signals{SIGINT, SIGTERM, SIGHUP};
    std::array<struct sigaction, signals.size()> previousActions_{};
};

} // namespace lumetwin::batch
