// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media::x265 {

/// Keeps the average bit rate of a two-layer stream. The encoder's own rate control sees layer 0 alone; this says,
/// after each access unit, what to ask of layer 0 so that both layers together come to the target.
class StereoRateLoop {
public:
    /// Bits per second and access units per second.
    StereoRateLoop(double target, double frameRate);

    /// An access unit came out: the bits of layer 0 and of both layers.
    void account(double baseBits, double totalBits);

    /// The encoder's rate control has forgotten all that came before the next access unit.
    void restart();

    /// Bits per second to ask of layer 0 from now on.
    double baseRate() const;

private:
    /// What the encoder's rate control remembers.
    struct Memory {
        double seconds;
        double base;  ///< bits of layer 0
        double total; ///< bits of both layers
    };
    static Memory fresh(double target, double share);

    double target_;
    double frameRate_;
    Memory memory_;
    double owed_ = 0; ///< bits that the whole stream is short of its target so far; negative when it is ahead
};

} // namespace lumetwin::media::x265
