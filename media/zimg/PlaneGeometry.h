// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"
#include "media/Placement.h"

#include <vector>

namespace lumetwin::media::zimg {

/// One axis of a placement on one plane, in samples of that plane. The two axes are independent.
struct PlaneAxis {
    int first = 0; ///< the canvas samples that the picture touches
    int count = 0;
    std::vector<float> covered; ///< for each of them, the share covered by the picture
    int windowFirst = 0;        ///< the source samples that are shown; no others are read
    int windowCount = 0;
    double regionBegin = 0; ///< source range for the touched canvas samples, relative to the window's first sample
    double regionLength = 0;
    bool moved = false; ///< each touched canvas sample is exactly one source sample

    bool empty() const { return count < 1 || windowCount < 1; }
    bool fullyCovered() const { return covered.front() == 1 && covered.back() == 1; }
};

/// The placement of a picture's plane on a canvas's plane.
struct PlaneGeometry {
    PlaneAxis x;
    PlaneAxis y;

    bool empty() const { return x.empty() || y.empty(); }
    bool moved() const { return x.moved && y.moved; }
};

/// Chroma with an unspecified location is treated as left, as video decoders do. Placements with an empty or infinite
/// rectangle touch no sample.
PlaneGeometry planeGeometry(const Placement &placement, const Picture &picture, const Picture &canvas, int plane);

} // namespace lumetwin::media::zimg
