// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media {

/// A rectangle in pixels, y growing downward; edges may be fractional.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const Rect &) const = default;
};

/// Where one picture goes on a canvas.
struct Placement {
    Rect source; ///< the part of the picture that is shown, in its pixels; nothing outside it is ever read
    Rect target; ///< where that part is scaled to, in canvas pixels; may reach beyond the clip
    Rect clip;   ///< canvas pixels outside are left alone
    /// Chroma samples that the clip's edge divides are written as if they lay inside: for the first of two pictures
    /// that meet there. The second is mixed with it, and the sample ends as half of each.
    bool takesSharedSamples = false;

    bool operator==(const Placement &) const = default;
};

} // namespace lumetwin::media
