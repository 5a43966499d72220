// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media::x265 {

/// Controls the average bit rate of a two-layer stream. The encoder's rate control sees only layer 0. After each access
/// unit this computes the rate to request for layer 0, so that both layers together reach the target.
class StereoRateLoop {
public:
    /// target: bits per second. frameRate: access units per second.
    StereoRateLoop(double target, double frameRate);

    /// Call for each access unit with the bits of layer 0 and of both layers.
    void account(double baseBits, double totalBits);

    /// Call when the encoder's rate control has reset its history before the next access unit.
    void restart();

    /// The bit rate to request for layer 0 from now on, in bits per second.
    double baseRate() const;

private:
    /// The history of the encoder's rate control.
    struct Memory {
        double seconds;
        double base;  ///< bits of layer 0
        double total; ///< bits of both layers
    };
    static Memory fresh(double target, double share);

    double target_;
    double frameRate_;
    Memory memory_;
    double owed_ = 0; ///< bits that the stream is below its target so far; negative when above
};

} // namespace lumetwin::media::x265
