// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Placement.h"

#include <cstdint>
#include <memory>

namespace lumetwin::media::zimg {

/// One plane of samples: 8 bits in a byte, more in two.
struct PlaneView {
    std::uint8_t *data = nullptr;
    std::ptrdiff_t stride = 0;
    int width = 0;
    int height = 0;
    int depth = 8;

    int bytes() const { return depth > 8 ? 2 : 1; }
};

/// Scales a rectangle of one plane to a whole number of samples. Filters are kept for the geometries seen last.
class PlaneResampler {
public:
    PlaneResampler();
    ~PlaneResampler();

    /// The samples of `region` (in the source plane's samples; it may reach beyond the plane, whose edge is then
    /// repeated) scaled to width × height at the given depth. Valid until the next call. Throws std::length_error
    /// for sizes out of range, std::runtime_error when the library refuses.
    PlaneView resample(const PlaneView &source, const Rect &region, int width, int height, int depth, bool fullRange);

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace lumetwin::media::zimg
