// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"
#include "media/Placement.h"

#include <vector>

namespace lumetwin::media::zimg {

/// One axis of a placement on one plane, in samples of that plane. The axes of a placement do not depend on
/// each other.
struct PlaneAxis {
    int first = 0; ///< the canvas samples that the picture touches
    int count = 0;
    std::vector<float> covered; ///< of each, how much of it the picture covers
    int windowFirst = 0;        ///< the source samples that are shown; nothing else is read
    int windowCount = 0;
    double regionBegin = 0; ///< what the touched canvas samples show, from the window's first sample
    double regionLength = 0;
    bool moved = false; ///< each touched canvas sample shows exactly one source sample

    bool empty() const { return count < 1 || windowCount < 1; }
    bool fullyCovered() const { return covered.front() == 1 && covered.back() == 1; }
};

/// Where a picture's plane goes on a canvas's plane.
struct PlaneGeometry {
    PlaneAxis x;
    PlaneAxis y;

    bool empty() const { return x.empty() || y.empty(); }
    bool moved() const { return x.moved && y.moved; }
};

/// Chroma without a stated place is taken as left-sited, as decoders of video take it. Placements with an empty or
/// infinite rectangle touch nothing.
PlaneGeometry planeGeometry(const Placement &placement, const Picture &picture, const Picture &canvas, int plane);

} // namespace lumetwin::media::zimg
