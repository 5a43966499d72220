// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/DecodingTimes.h"

#include <gtest/gtest.h>

namespace lumetwin::media::x265 {
namespace {

TEST(DecodingTimes, AreTheTimesOfShowingLaterByTheReordering) {
    DecodingTimes times(2, 20);
    for (const std::int64_t time : {100, 120, 140, 160})
        times.show(time);
    EXPECT_EQ(times.next(), 60);
    EXPECT_EQ(times.next(), 80);
    EXPECT_EQ(times.next(), 100);
    EXPECT_EQ(times.next(), 120);
}

TEST(DecodingTimes, RiseAndKeepBeforeShowingWhereFramesLastDifferently) {
    // Shown at 0, 10, 90, 91, 200; coded in the order of a small pyramid: 0, 200, 90, 10, 91.
    DecodingTimes times(2, 20);
    for (const std::int64_t time : {0, 10, 90, 91, 200})
        times.show(time);
    std::int64_t before = -1000;
    for (const std::int64_t shown : {0, 200, 90, 10, 91}) {
        const std::int64_t decoded = times.next();
        EXPECT_GT(decoded, before);
        EXPECT_LE(decoded, shown);
        before = decoded;
    }
}

TEST(DecodingTimes, OfAClipShorterThanTheReordering) {
    DecodingTimes times(2, 20);
    times.show(0);
    EXPECT_EQ(times.next(), -40);
}

} // namespace
} // namespace lumetwin::media::x265
