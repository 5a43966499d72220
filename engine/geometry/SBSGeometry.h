// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"
#include "media/Placement.h"
#include "model/ConversionSettings.h"

#include <cstdint>

namespace lumetwin {

/// The position of an eye of srcW × srcH pixels that is scaled to a cell by a resize mode. In 64-bit floats; the origin
/// is the cell's lower left corner. With cropFill the rectangle is larger than the cell.
media::Rect fittedEye(ResizeMode mode, double srcW, double srcH, double cellW, double cellH);

/// The same rectangle with the origin at the upper left corner of a canvas of that height, as media/ uses it.
media::Rect topDown(const media::Rect &rect, double canvasHeight);

/// Sizes of a side-by-side frame and the position of an eye in its half. If the frame width is odd, the last column
/// stays black.
struct SBSGeometry {
    std::int64_t outW = 0; ///< frame
    std::int64_t outH = 0;
    std::int64_t eyeW = 0; ///< one half: outW / 2, rounded down
    media::Rect eye;       ///< the whole eye in its half; the origin is the upper left corner

    /// The placements of the pictures that fill the left and the right half. Place the left one first: if the boundary
    /// divides a chroma sample, each eye gets half of it.
    media::Placement leftHalf(const media::Picture &picture) const;
    media::Placement rightHalf(const media::Picture &picture) const;
    /// Whether the two halves cover every pixel of the frame.
    bool coversFrame() const;
};

/// The frame for source eyes of the given size. Ends the program if doubling the width overflows 64 bits.
SBSGeometry sbsGeometry(const ConversionSettings &settings, std::int64_t srcW, std::int64_t srcH);

} // namespace lumetwin
