// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

namespace lumetwin::media {

/// A positive fraction; 0 / 1 where it is unknown.
struct Fraction {
    std::int64_t numerator = 0;
    std::int64_t denominator = 1;

    bool operator==(const Fraction &) const = default;
    explicit operator bool() const { return numerator > 0; }
    double value() const { return static_cast<double>(numerator) / static_cast<double>(denominator); }
};

/// When the frames of a track are shown, edit lists applied, in ticks of the track.
struct FrameTimes {
    std::vector<std::int64_t> starts; ///< ascending
    std::int64_t end = 0;             ///< of the last frame
    Fraction tick;                    ///< seconds
};

/// How fast the frames of a track follow each other.
struct FramePace {
    Fraction rate;            ///< frames a second; that of a common rate within 0.5 %
    double frameDuration = 0; ///< seconds from one frame to the next in the mean, as it was measured; 0 when unknown
    bool isConstant = false;  ///< all frames but the first and the last are shown equally long, to a tick
};

/// The rate of frames as their times have it. Where all durations but the first and the last agree to a tick, it is
/// theirs; else it is the number of frames by the time that they are shown.
FramePace framePace(const FrameTimes &times);

/// The common rate (24000/1001, 24, 25, 30000/1001, 30, 48, 50, 60000/1001, 60, 90, 100, 120000/1001, 120, 240) that is
/// nearest to a rate within 0.5 %; the rate itself where there is none.
Fraction nearestCommonRate(Fraction rate);

} // namespace lumetwin::media
