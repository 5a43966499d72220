// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"

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
};

/// Scales, places and converts pictures onto canvases of one format. Pixels that a placed picture covers in part (a
/// fractional edge) are mixed with what is there by the covered area. Where scale is 1 and positions are whole
/// (in each plane's own samples) and formats agree, samples are moved untouched. Depth is reduced with
/// dithering. Filters are built once for each geometry and kept: one object per thread.
class Compositor {
public:
    Compositor();
    ~Compositor();
    Compositor(Compositor &&) noexcept;
    Compositor &operator=(Compositor &&) noexcept;

    /// Fills the canvas with black of its colour model and range.
    static void fillBlack(Picture &canvas);
    void place(const Picture &picture, const Placement &placement, Picture &canvas);

private:
    struct Filters;
    std::unique_ptr<Filters> filters_;
};

} // namespace lumetwin::media
