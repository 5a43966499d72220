// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

namespace lumetwin::media {

/// Channels of samples, all equally long, -1 to 1.
using Channels = std::vector<std::vector<float>>;

/// One library's way of making sound longer or shorter. What comes out lies where it belongs: no delay at its
/// beginning.
class SpeedChanger {
public:
    virtual ~SpeedChanger() = default;
    /// Takes samples and adds what is ready to `ready`.
    virtual void change(const Channels &samples, Channels &ready) = 0;
    virtual void finish(Channels &ready) = 0;
};

} // namespace lumetwin::media
