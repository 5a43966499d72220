// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/confinement/BitPatterns.h"

#include <algorithm>

namespace lumetwin::worker {
namespace {

constexpr std::uint32_t highestBit = 0x80000000;

/// Splits a pattern by the next bit until it matches none of the numbers.
void split(BitPattern pattern, std::uint32_t bit, std::span<const std::uint32_t> numbers,
           std::vector<BitPattern> &result) {
    if (std::ranges::none_of(numbers, [&](std::uint32_t number) { return pattern.matches(number); })) {
        result.push_back(pattern);
        return;
    }
    if (bit == 0)
        return; // it is one of the numbers
    split({pattern.mask | bit, pattern.value}, bit >> 1, numbers, result);
    split({pattern.mask | bit, pattern.value | bit}, bit >> 1, numbers, result);
}

} // namespace

std::vector<BitPattern> patternsExcept(std::span<const std::uint32_t> numbers) {
    std::vector<BitPattern> result;
    split({}, highestBit, numbers, result);
    return result;
}

} // namespace lumetwin::worker
