// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/CodingLevel.h"

#include <gtest/gtest.h>

namespace lumetwin::media::x265 {
namespace {

TEST(CodingLevel, IsTheLowestThatHoldsSizeRateAndBits) {
    EXPECT_EQ(codingLevel(1920, 1080, 30, 9'000'000).number, 40);
    EXPECT_EQ(codingLevel(1920, 1080, 60, 9'000'000).number, 41);
    EXPECT_EQ(codingLevel(3840, 2160, 60, 40'000'000).number, 51);
    EXPECT_EQ(codingLevel(4096, 4096, 30, 60'000'000).number, 60);
    EXPECT_EQ(codingLevel(96, 96, 30, 1'000'000).number, 20);
}

TEST(CodingLevel, RisesWithTheBitRateAlone) {
    EXPECT_EQ(codingLevel(1920, 1080, 30, 12'000'001).number, 41);
    EXPECT_EQ(codingLevel(1920, 1080, 30, 70'000'000).number, 61);
}

TEST(CodingLevel, LimitsTheLongerSide) {
    // 8444 is the longest side of level 5: the root of 8 times its samples.
    EXPECT_EQ(codingLevel(8440, 128, 1, 1'000'000).number, 50);
    EXPECT_EQ(codingLevel(8448, 128, 1, 1'000'000).number, 60);
}

TEST(CodingLevel, HasNoLimitsBeyondTheHighest) {
    const CodingLevel level = codingLevel(16384, 16384, 30, 500'000'000);
    EXPECT_EQ(level.number, 85);
    EXPECT_GT(level.highestBitRate, 2'000'000'000);
}

} // namespace
} // namespace lumetwin::media::x265
