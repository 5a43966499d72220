// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace lumetwin::media::x265 {

/// Keeps the average bit rate of a two-layer stream. The encoder's own rate control sees layer 0 alone; this says,
/// after each access unit, what to ask of layer 0 so that both layers together come to the target.
class StereoRateLoop {
public:
    /// Bits per second and access units per second.
    StereoRateLoop(double target, double frameRate);

    /// An access unit came out: the bits of layer 0 and of both layers.
    void account(double baseBits, double totalBits);

    /// Bits per second to ask of layer 0 from now on.
    double baseRate() const;

private:
    double target_;
    double bitsPerUnit_;
    double base_;  ///< of layer 0 lately, fading
    double total_; ///< of both layers lately, fading
    double fading_;
    double owed_ = 0; ///< bits that the stream is short of its target so far; negative when it is ahead
};

} // namespace lumetwin::media::x265
