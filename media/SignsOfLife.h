// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>

namespace lumetwin::media {

// A process-wide counter that increases whenever work reads, writes or starts another step. It distinguishes long work
// from an endless loop. Any thread may use it.

namespace details {
inline std::atomic<std::uint64_t> signsOfLife = 0;
}

inline void giveSignOfLife() noexcept {
    details::signsOfLife.fetch_add(1, std::memory_order_relaxed);
}

inline std::uint64_t signsOfLife() noexcept {
    return details::signsOfLife.load(std::memory_order_relaxed);
}

} // namespace lumetwin::media
