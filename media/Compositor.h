// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Cancellation.h"
#include "media/Picture.h"
#include "media/Placement.h"

#include <memory>

namespace lumetwin::media {

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
