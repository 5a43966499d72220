// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

namespace lumetwin::media {

/// A positive fraction; 0 / 1 when unknown.
struct Fraction {
    std::int64_t numerator = 0;
    std::int64_t denominator = 1;

    bool operator==(const Fraction &) const = default;
    explicit operator bool() const { return numerator > 0; }
    double value() const { return static_cast<double>(numerator) / static_cast<double>(denominator); }
};

/// The presentation times of a track's frames in ticks of the track, with edit lists applied.
struct FrameTimes {
    std::vector<std::int64_t> starts; ///< ascending
    std::int64_t end = 0;             ///< of the last frame
    Fraction tick;                    ///< seconds
};

/// The frame rate of a track.
struct FramePace {
    Fraction rate;            ///< frames per second; a common or whole rate if one is near (framePace)
    double frameDuration = 0; ///< mean time from one frame to the next in seconds, as measured; 0 when unknown
    bool isConstant = false;  ///< all frames except the first and the last have equal durations, within one tick
};

/// The frame rate from the frames' times. If all durations except the first and the last agree within one tick, it is 1
/// / duration; otherwise the number of frames divided by their total time. A common rate within 0.5 % is taken instead;
/// where there is none and the durations agree, a whole number of frames a second that differs by rounding to ticks.
FramePace framePace(const FrameTimes &times);

/// The common rate (24000/1001, 24, 25, 30000/1001, 30, 48, 50, 60000/1001, 60, 90, 100, 120000/1001, 120, 240) that is
/// nearest to a rate and within 0.5 %; otherwise the rate itself.
Fraction nearestCommonRate(Fraction rate);

} // namespace lumetwin::media
