// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/DecodingTimes.h"

#include <gtest/gtest.h>

#include <vector>

namespace lumetwin::media {
namespace {

struct Packet {
    std::int64_t time, duration;
    bool operator==(const Packet &) const = default;
};

/// Hands over the pictures with the encoder so many of them behind, then takes the rest.
std::vector<Packet> packets(int reordering, const std::vector<std::int64_t> &times, std::int64_t duration, int delay) {
    DecodingTimes decoding(reordering);
    std::vector<Packet> result;
    const auto take = [&] {
        const DecodingTimes::Moment moment = decoding.next();
        result.push_back({moment.time, moment.duration});
    };
    for (std::size_t index = 0; index < times.size(); ++index) {
        decoding.add(times[index], duration);
        if (static_cast<int>(index) >= delay)
            take();
    }
    while (result.size() < times.size())
        take();
    return result;
}

TEST(DecodingTimes, OfAConstantRateFollowTheCodingOrder) {
    EXPECT_EQ(packets(2, {0, 20, 40, 60, 80}, 20, 3),
              (std::vector<Packet>{{-40, 20}, {-20, 20}, {0, 20}, {20, 20}, {40, 20}}));
}

TEST(DecodingTimes, WithoutReorderingAreThoseOfShowing) {
    EXPECT_EQ(packets(0, {0, 20, 40}, 20, 0), (std::vector<Packet>{{0, 20}, {20, 20}, {40, 20}}));
    EXPECT_EQ(packets(0, {0, 33, 100}, 20, 1), (std::vector<Packet>{{0, 33}, {33, 67}, {100, 20}}));
}

TEST(DecodingTimes, OfAVariableRateLieWhereEarlierPicturesAreShown) {
    EXPECT_EQ(packets(1, {100, 110, 500, 505}, 10, 2),
              (std::vector<Packet>{{90, 10}, {100, 10}, {110, 390}, {500, 5}}));
}

TEST(DecodingTimes, RiseAndComeBeforeShowingWhereFramesLastDifferently) {
    // Shown at 0, 10, 90, 91, 200; coded in the order of a small pyramid: 0, 200, 90, 10, 91.
    const std::vector<Packet> decoded = packets(2, {0, 10, 90, 91, 200}, 20, 3);
    const std::vector<std::int64_t> shown{0, 200, 90, 10, 91};
    for (std::size_t index = 0; index < shown.size(); ++index) {
        EXPECT_LE(decoded[index].time, shown[index]);
        if (index > 0) {
            EXPECT_EQ(decoded[index].time, decoded[index - 1].time + decoded[index - 1].duration);
        }
    }
}

TEST(DecodingTimes, OfFilmsThatAreShorterThanTheReordering) {
    EXPECT_EQ(packets(2, {0}, 20, 3), (std::vector<Packet>{{-40, 20}}));
}

} // namespace
} // namespace lumetwin::media
