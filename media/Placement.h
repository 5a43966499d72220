// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media {

/// A rectangle in pixels. y grows downward; edges may be fractional.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const Rect &) const = default;
};

/// How a picture is placed on a canvas.
struct Placement {
    Rect source; ///< the shown part of the picture, in its pixels; nothing outside is read
    Rect target; ///< the rectangle to which that part is scaled, in canvas pixels; may be larger than the clip
    Rect clip;   ///< canvas pixels outside are not changed
    /// Chroma samples divided by the clip's edge are written as if they were inside. Use this for the first of two
    /// pictures that share an edge: the second one is blended into these samples, so that each has half of them.
    bool takesSharedSamples = false;

    bool operator==(const Placement &) const = default;
};

} // namespace lumetwin::media
