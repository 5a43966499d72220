// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Cancellation.h"
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
    /// Chroma samples that the clip's edge divides are written as if they lay inside: for the first of two pictures
    /// that meet there. The second is mixed with it, and the sample ends as half of each.
    bool takesSharedSamples = false;

    bool operator==(const Placement &) const = default;
};

/// Scales, places and converts pictures onto canvases. Pixels that a placed picture covers in part (a fractional edge)
/// are mixed with what is there by the covered area. Where scale is 1 and positions are whole (in each plane's own
/// samples) and formats agree, samples are moved untouched. Depth is reduced with dithering; full and limited range
/// are converted into each other where both pictures state theirs. Grey goes onto every colour model, else the models
/// must agree. What a geometry needs is built once and kept: one object per thread.
class Compositor {
public:
    explicit Compositor(Cancellation cancellation = {});
    ~Compositor();
    Compositor(Compositor &&) noexcept;
    Compositor &operator=(Compositor &&) noexcept;

    /// Fills the canvas with black of its colour model and range.
    static void fillBlack(Picture &canvas);
    /// A placement with an empty or infinite rectangle leaves the canvas as it is. Throws std::logic_error when the
    /// colour models do not fit, std::length_error for planes of more than 65535 samples a side, std::runtime_error
    /// when the library refuses, Cancelled when it is to stop.
    void place(const Picture &picture, const Placement &placement, Picture &canvas);

private:
    struct Filters;
    std::unique_ptr<Filters> filters_;
};

} // namespace lumetwin::media
