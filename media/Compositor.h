// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Cancellation.h"
#include "media/Picture.h"
#include "media/Placement.h"

#include <memory>

namespace lumetwin::media {

/// Scales and converts pictures and places them on canvases. A pixel that a picture covers partly (at a fractional
/// edge) is blended with the canvas by the covered area. If the scale is 1, positions are integers (in the samples of
/// each plane) and formats agree, samples are copied unchanged. A reduction of depth is dithered. Full and limited
/// range are converted if both pictures state theirs. A grey picture can be placed on any colour model; otherwise the
/// models must be equal. Filters for a geometry are created once and kept: use one object per thread.
class Compositor {
public:
    explicit Compositor(Cancellation cancellation = {});
    ~Compositor();
    Compositor(Compositor &&) noexcept;
    Compositor &operator=(Compositor &&) noexcept;

    /// Fills the canvas with black of its colour model and range.
    static void fillBlack(Picture &canvas);
    /// A placement with an empty or infinite rectangle does not change the canvas. Throws std::logic_error when the
    /// colour models do not match, std::length_error for planes with more than 65535 samples on a side,
    /// std::runtime_error when the library refuses, Cancelled when cancelled.
    void place(const Picture &picture, const Placement &placement, Picture &canvas);

private:
    struct Filters;
    std::unique_ptr<Filters> filters_;
};

} // namespace lumetwin::media
