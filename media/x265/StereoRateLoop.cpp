// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/StereoRateLoop.h"

#include <algorithm>
#include <cmath>

namespace lumetwin::media::x265 {

namespace {

// Layer 0's usual share of the bits, believed until the stream has shown its own.
constexpr double expectedShare = 0.6;
constexpr double expectedSeconds = 0.5;
// How long the share remembers. Longer than a group of pictures, so that key frames do not shake it.
constexpr double memorySeconds = 10;
// In how many seconds what is owed would be made up for. The encoder's own control answers a second or two late: at
// four seconds the rate begins to swing and the picture loses 0.3 dB; at eight, clips of 20 s end up to 4 % off.
constexpr double repaymentSeconds = 6;
constexpr double leastCorrection = 0.6;
constexpr double greatestCorrection = 1.6;
// A passage that cannot use its bits (black, a still) saves up at most this much for what follows.
constexpr double longestDebt = 20;

} // namespace

StereoRateLoop::StereoRateLoop(double target, double frameRate)
    : target_(target), bitsPerUnit_(target / frameRate), base_(target * expectedSeconds * expectedShare),
      total_(target * expectedSeconds), fading_(std::exp(-1 / (frameRate * memorySeconds))) {}

void StereoRateLoop::account(double baseBits, double totalBits) {
    base_ = base_ * fading_ + baseBits;
    total_ = total_ * fading_ + totalBits;
    owed_ = std::clamp(owed_ + bitsPerUnit_ - totalBits, -longestDebt * target_, longestDebt * target_);
}

double StereoRateLoop::baseRate() const {
    const double share = base_ / total_;
    const double correction = 1 + owed_ / (repaymentSeconds * target_);
    return target_ * share * std::clamp(correction, leastCorrection, greatestCorrection);
}

} // namespace lumetwin::media::x265
