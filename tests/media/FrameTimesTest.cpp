// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/FrameTimes.h"

#include <gtest/gtest.h>

#include <cmath>

namespace lumetwin::media {
namespace {

/// Frames that follow each other by the given durations; the last one ends the film.
FrameTimes lasting(const std::vector<std::int64_t> &durations, Fraction tick) {
    FrameTimes times;
    times.tick = tick;
    for (const std::int64_t duration : durations) {
        times.starts.push_back(times.end);
        times.end += duration;
    }
    return times;
}

/// Frames of a rate whose times were rounded to ticks.
FrameTimes rounded(double rate, int frames, Fraction tick) {
    FrameTimes times;
    times.tick = tick;
    for (int frame = 0; frame <= frames; ++frame)
        times.starts.push_back(std::llround(frame / rate / tick.value()));
    times.end = times.starts.back();
    times.starts.pop_back();
    return times;
}

TEST(CommonRate, IsTheNearestWithinHalfAPercent) {
    EXPECT_EQ(nearestCommonRate({2997, 100}), (Fraction{30000, 1001}));
    EXPECT_EQ(nearestCommonRate({300025, 10000}), (Fraction{30, 1}));
    EXPECT_EQ(nearestCommonRate({23976, 1000}), (Fraction{24000, 1001}));
    EXPECT_EQ(nearestCommonRate({2401, 100}), (Fraction{24, 1}));
    EXPECT_EQ(nearestCommonRate({11988, 100}), (Fraction{120000, 1001}));
    EXPECT_EQ(nearestCommonRate({15, 1}), (Fraction{15, 1})) << "no common rate";
    EXPECT_EQ(nearestCommonRate({2486, 100}), (Fraction{2486, 100})) << "0.56 % below 25";
    EXPECT_FALSE(nearestCommonRate({}));
}

TEST(FramePace, IsThatOfEqualDurations) {
    const FramePace pace = framePace(lasting(std::vector<std::int64_t>(100, 1001), {1, 30000}));
    EXPECT_EQ(pace.rate, (Fraction{30000, 1001}));
    EXPECT_TRUE(pace.isConstant);
    EXPECT_DOUBLE_EQ(pace.frameDuration, 1001 / 30000.0);
}

TEST(FramePace, DoesNotCountTheFirstAndTheLastFrame) {
    std::vector<std::int64_t> durations(600, 20);
    durations.back() = 19;
    EXPECT_EQ(framePace(lasting(durations, {1, 600})).rate, (Fraction{30, 1}));
    durations.back() = 6000; // a last picture that stays
    durations.front() = 300;
    const FramePace pace = framePace(lasting(durations, {1, 600}));
    EXPECT_EQ(pace.rate, (Fraction{30, 1}));
    EXPECT_DOUBLE_EQ(pace.frameDuration, 1 / 30.0);
}

TEST(FramePace, TimesInMillisecondsAreRounded) {
    for (const Fraction &rate :
         {Fraction{24000, 1001}, {24, 1}, {30000, 1001}, {30, 1}, {48, 1}, {60000, 1001}, {60, 1}, {90, 1}, {120, 1}}) {
        const FramePace pace = framePace(rounded(rate.value(), 2000, {1, 1000}));
        EXPECT_EQ(pace.rate, rate) << rate.value();
        EXPECT_TRUE(pace.isConstant);
        EXPECT_DOUBLE_EQ(pace.frameDuration, 1 / rate.value()) << "not what rounding makes of it";
    }
}

// In Matroska and Windows Media, films of 15 frames a second became 2.5 % faster.
TEST(FramePace, WholeRatesInMillisecondsAreRounded) {
    for (const int rate : {5, 7, 10, 12, 15, 18, 20, 72})
        for (const int frames : {15, 2000}) {
            const FramePace pace = framePace(rounded(rate, frames, {1, 1000}));
            EXPECT_EQ(pace.rate, (Fraction{rate, 1})) << frames;
            EXPECT_DOUBLE_EQ(pace.frameDuration, 1.0 / rate) << frames;
        }
    EXPECT_EQ(framePace(lasting(std::vector<std::int64_t>(4, 1001), {1, 30000})).rate, (Fraction{30000, 1001}));
    const FramePace beside = framePace(rounded(14.98, 2000, {1, 1000}));
    EXPECT_NEAR(beside.rate.value(), 14.98, 1e-3) << "not by rounding";
    EXPECT_NEAR(beside.frameDuration, 1 / 14.98, 1e-6);
}

TEST(FramePace, RateBesideACommonOneKeepsItsDuration) {
    // 29.95 frames a second count as 29.97, but the sound has to follow what is there.
    const FramePace pace = framePace(rounded(29.95, 3000, {1, 90000}));
    EXPECT_EQ(pace.rate, (Fraction{30000, 1001}));
    EXPECT_NEAR(pace.frameDuration, 1 / 29.95, 1e-8);
}

TEST(FramePace, OfVariableTimesIsFramesByTime) {
    std::vector<std::int64_t> durations(100, 20);
    durations.resize(150, 40); // 100 frames of 1/30 s and 50 of 1/15 s
    const FramePace pace = framePace(lasting(durations, {1, 600}));
    EXPECT_FALSE(pace.isConstant);
    EXPECT_DOUBLE_EQ(pace.rate.value(), 22.5);
    EXPECT_DOUBLE_EQ(pace.frameDuration, 1 / 22.5);
}

TEST(FramePace, FramesThatAreLeftOutAreNoRounding) {
    // Times that count frames: every tenth frame is missing.
    std::vector<std::int64_t> durations;
    for (int frame = 0; frame < 100; ++frame)
        durations.push_back(frame % 9 == 4 ? 2 : 1);
    EXPECT_FALSE(framePace(lasting(durations, {1, 25})).isConstant);
}

TEST(FramePace, DurationsThatRunAwayTickByTickAreNotConstant) {
    std::vector<std::int64_t> durations(500, 33);
    durations.resize(1000, 34);
    const FramePace pace = framePace(lasting(durations, {1, 1000}));
    EXPECT_FALSE(pace.isConstant);
    EXPECT_NEAR(pace.frameDuration, 0.0335, 1e-9);
}

TEST(FramePace, OfFewFrames) {
    EXPECT_FALSE(framePace({}).rate);
    EXPECT_EQ(framePace(lasting({24}, {1, 600})).rate, (Fraction{25, 1}));
    EXPECT_EQ(framePace(lasting({24, 1}, {1, 600})).rate, (Fraction{25, 1}));
    EXPECT_EQ(framePace(lasting({7, 24, 1}, {1, 600})).rate, (Fraction{25, 1}));
    EXPECT_FALSE(framePace(lasting({0}, {1, 600})).rate) << "no time at all";
    EXPECT_FALSE(framePace(lasting({0, 0, 0}, {1, 600})).rate);
    EXPECT_FALSE(framePace(lasting({20, 20}, {0, 1})).rate) << "no unit";
}

TEST(FramePace, TimesBeyondAllMeasureAreUnknown) {
    const FrameTimes times{{0, INT64_MAX / 4, INT64_MAX / 2}, INT64_MAX - 1, {1, INT64_MAX / 2}};
    const FramePace pace = framePace(times);
    EXPECT_TRUE(!pace.rate || std::isfinite(pace.rate.value()));
}

} // namespace
} // namespace lumetwin::media
