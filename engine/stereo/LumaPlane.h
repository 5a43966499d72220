// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"
#include "media/Placement.h"

#include <vector>

namespace lumetwin {

/// The brightness of one eye, from 0 to 255, row by row without padding.
struct LumaPlane {
    int width = 0;
    int height = 0;
    std::vector<float> samples;

    const float *row(int y) const { return samples.data() + static_cast<std::size_t>(y) * width; }
    float *row(int y) { return samples.data() + static_cast<std::size_t>(y) * width; }
};

/// A part of a picture (in its pixels), reduced to this size by averaging. What lies outside
/// the picture is left out of the part. An empty plane when the size or the part is empty.
LumaPlane reducedLuma(const media::Picture &picture, const media::Rect &part, int width, int height);

/// Half the width and height, each sample the mean of four. An odd last column and row are left out.
LumaPlane halved(const LumaPlane &plane);

} // namespace lumetwin
