// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>

namespace lumetwin {

/// How a running conversion is cancelled and where it reports progress. Everything is called on the conversion's
/// threads.
struct ConversionControl {
    /// Checked before each frame, and during any work that can take long.
    const std::atomic<bool> *cancelRequested = nullptr;
    /// (current frame, total frames; 0 when the total is unknown). May be empty.
    std::function<void(std::int64_t, std::int64_t)> onFrameProgress;
    /// Receives messages for the log, in English. May be empty.
    std::function<void(const std::string &)> onLog = {};

    bool cancelled() const { return cancelRequested && cancelRequested->load(std::memory_order_relaxed); }
};

} // namespace lumetwin
