// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/confinement/BitPatterns.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <random>

namespace lumetwin::worker {
namespace {

bool anyMatches(const std::vector<BitPattern> &patterns, std::uint32_t number) {
    return std::ranges::any_of(patterns, [&](const BitPattern &pattern) { return pattern.matches(number); });
}

TEST(BitPatterns, MatchEveryNumberButTheGiven) {
    const std::array<std::uint32_t, 4> numbers{0, 15, 16, 1030};
    const std::vector<BitPattern> patterns = patternsExcept(numbers);
    for (const std::uint32_t number : numbers)
        EXPECT_FALSE(anyMatches(patterns, number)) << number;
    for (std::uint32_t number = 0; number < 5000; ++number)
        EXPECT_EQ(anyMatches(patterns, number), std::ranges::find(numbers, number) == numbers.end()) << number;
    std::minstd_rand random;
    for (int sample = 0; sample < 10'000; ++sample) {
        const std::uint32_t number = 5000 + static_cast<std::uint32_t>(random()) * 2;
        EXPECT_TRUE(anyMatches(patterns, number)) << number;
    }
    EXPECT_LE(patterns.size(), 32 * numbers.size());
}

TEST(BitPatterns, OfNothingMatchEverything) {
    const std::vector<BitPattern> patterns = patternsExcept({});
    ASSERT_EQ(patterns.size(), 1u);
    EXPECT_EQ(patterns[0].mask, 0u);
}

} // namespace
} // namespace lumetwin::worker
