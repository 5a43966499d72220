// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace lumetwin::worker {

/// Matches all numbers whose masked bits equal the value.
struct BitPattern {
    std::uint32_t mask = 0;
    std::uint32_t value = 0;

    bool matches(std::uint32_t number) const { return (number & mask) == value; }
};

/// Patterns that together match every 32-bit number except the given ones, because a system call filter can only
/// compare masked bits. At most 32 patterns per number.
std::vector<BitPattern> patternsExcept(std::span<const std::uint32_t> numbers);

} // namespace lumetwin::worker
