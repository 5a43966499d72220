// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/FrameTimes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <optional>

namespace lumetwin::media {

namespace {

constexpr std::array<Fraction, 14> commonRates{{{24000, 1001},
                                                {24, 1},
                                                {25, 1},
                                                {30000, 1001},
                                                {30, 1},
                                                {48, 1},
                                                {50, 1},
                                                {60000, 1001},
                                                {60, 1},
                                                {90, 1},
                                                {100, 1},
                                                {120000, 1001},
                                                {120, 1},
                                                {240, 1}}};
constexpr double rateTolerance = 0.005;
// If the tick is one frame, a difference of one tick is a missing frame. If ticks are finer than this, it is rounding.
constexpr std::int64_t roundedTicks = 4;

double distance(const Fraction &rate, const Fraction &other) {
    return std::abs(rate.value() / other.value() - 1);
}

bool isNear(const Fraction &rate, const Fraction &other) {
    return distance(rate, other) <= rateTolerance;
}

std::optional<Fraction> commonRateNear(const Fraction &rate) {
    const auto from = [&](const Fraction &common) { return distance(rate, common); };
    const auto nearest = std::ranges::min_element(commonRates, {}, from);
    return rate && isNear(rate, *nearest) ? std::optional(*nearest) : std::nullopt;
}

/// Frames divided by ticks, as frames per second.
Fraction perSecond(std::int64_t frames, std::int64_t ticks, const Fraction &tick) {
    const std::int64_t common = std::gcd(frames, ticks);
    const Fraction perTick{frames / common, ticks / common};
    std::int64_t numerator = 0;
    std::int64_t denominator = 0;
    if (__builtin_mul_overflow(perTick.numerator, tick.denominator, &numerator) ||
        __builtin_mul_overflow(perTick.denominator, tick.numerator, &denominator))
        return {};
    const std::int64_t divisor = std::gcd(numerator, denominator);
    return {numerator / divisor, denominator / divisor};
}

struct Run {
    std::int64_t frames;
    std::int64_t ticks;
};

/// The frames that must have equal durations: all without the first and the last one, unless there are no others.
std::optional<Run> equalDurations(const FrameTimes &times) {
    const std::vector<std::int64_t> &starts = times.starts;
    if (starts.size() < 2)
        return std::nullopt;
    const std::size_t first = starts.size() > 2 ? 1 : 0;
    std::int64_t shortest = starts[first + 1] - starts[first];
    std::int64_t longest = shortest;
    for (std::size_t index = first + 1; index + 1 < starts.size(); ++index) {
        shortest = std::min(shortest, starts[index + 1] - starts[index]);
        longest = std::max(longest, starts[index + 1] - starts[index]);
    }
    if (shortest < 1 || longest > shortest + (shortest >= roundedTicks ? 1 : 0))
        return std::nullopt;
    return Run{static_cast<std::int64_t>(starts.size() - 1 - first), starts.back() - starts[first]};
}

/// Whether the times, rounded to ticks, match equal durations over the whole track. Comparing single durations is not
/// enough, because small differences may add up.
bool liesOnGrid(const FrameTimes &times, const Run &run) {
    const std::size_t first = times.starts.size() > 2 ? 1 : 0;
    const double step = static_cast<double>(run.ticks) / static_cast<double>(run.frames);
    for (std::size_t index = first; index < times.starts.size(); ++index) {
        const double expected = static_cast<double>(times.starts[first]) + step * static_cast<double>(index - first);
        if (std::abs(static_cast<double>(times.starts[index]) - expected) > 2)
            return false;
    }
    return true;
}

/// Whether a run differs from equal durations at a rate only by the rounding of its times.
bool isRounded(const Run &run, const Fraction &rate, const Fraction &tick) {
    const double ticks = static_cast<double>(run.frames) / rate.value() / tick.value();
    return std::abs(ticks - static_cast<double>(run.ticks)) <= 2;
}

/// A common rate near the exact one. Where there is none: a whole number of frames a second that is as near and differs
/// by rounding only (15 in milliseconds is 15.005 or so), otherwise the exact rate.
Fraction rateOf(const Run &run, const Fraction &exact, const Fraction &tick, bool isConstant) {
    if (const auto common = commonRateNear(exact))
        return *common;
    const Fraction whole{std::llround(exact.value()), 1};
    const bool taken = isConstant && whole && isNear(exact, whole) && isRounded(run, whole, tick);
    return taken ? whole : exact;
}

FramePace pace(const FrameTimes &times, const Run &run, bool isConstant) {
    FramePace result;
    result.isConstant = isConstant;
    const Fraction exact = perSecond(run.frames, run.ticks, times.tick);
    if (!exact)
        return result;
    result.rate = rateOf(run, exact, times.tick, isConstant);
    // If the rate differs from that one only by rounding, it is that rate.
    result.frameDuration = 1 / (isRounded(run, result.rate, times.tick) ? result.rate : exact).value();
    return result;
}

} // namespace

Fraction nearestCommonRate(Fraction rate) {
    return commonRateNear(rate).value_or(rate);
}

FramePace framePace(const FrameTimes &times) {
    if (times.starts.empty() || !times.tick)
        return {};
    const std::optional<Run> equal = equalDurations(times);
    if (equal && liesOnGrid(times, *equal))
        return pace(times, *equal, true);
    const Run whole{static_cast<std::int64_t>(times.starts.size()), times.end - times.starts.front()};
    return whole.ticks > 0 ? pace(times, whole, whole.frames == 1) : FramePace{};
}

} // namespace lumetwin::media
