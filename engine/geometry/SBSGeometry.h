// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"
#include "media/Placement.h"
#include "model/ConversionSettings.h"

#include <cstdint>

namespace lumetwin {

/// Where an eye of srcW × srcH pixels lies when it is fitted into a cell, in 64-bit floats, origin at the cell's lower
/// left. Larger than the cell where the mode crops.
media::Rect fittedEye(ResizeMode mode, double srcW, double srcH, double cellW, double cellH);

/// The same rectangle with its origin at the upper left of a canvas of the given height, as media/ counts.
media::Rect topDown(const media::Rect &rect, double canvasHeight);

/// Sizes of a side-by-side frame and the place of an eye in its half. Odd frame widths leave the last column black.
struct SBSGeometry {
    std::int64_t outW = 0; ///< frame
    std::int64_t outH = 0;
    std::int64_t eyeW = 0; ///< one half: outW / 2, truncated
    media::Rect eye;       ///< the whole eye within its half, origin at the upper left

    /// How a picture is placed that fills the left or right half: the left one first, so that where the seam divides
    /// a chroma sample each eye has half of it.
    media::Placement leftHalf(const media::Picture &picture) const;
    media::Placement rightHalf(const media::Picture &picture) const;
    /// Whether the two halves cover every pixel of the frame.
    bool coversFrame() const;
};

/// The frame for source eyes of the given size. Doubling a width beyond 64 bits stops the program.
SBSGeometry sbsGeometry(const ConversionSettings &settings, std::int64_t srcW, std::int64_t srcH);

} // namespace lumetwin
