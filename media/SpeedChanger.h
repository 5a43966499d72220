// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

namespace lumetwin::media {

/// Samples of each channel, -1 to 1. All channels have the same length.
using Channels = std::vector<std::vector<float>>;

/// Makes sound longer or shorter with one library. The output has no delay at its beginning.
class SpeedChanger {
public:
    virtual ~SpeedChanger() = default;
    /// Accepts samples and appends finished ones to `ready`.
    virtual void change(const Channels &samples, Channels &ready) = 0;
    virtual void finish(Channels &ready) = 0;
};

} // namespace lumetwin::media
