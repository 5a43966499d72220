// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/geometry/SBSGeometry.h"
#include "media/Compositor.h"

namespace lumetwin {

/// Places two eyes side by side on canvases of one geometry. May be used by one thread at a time.
class SBSComposition {
public:
    explicit SBSComposition(const SBSGeometry &geometry) : geometry_(geometry) {}

    /// Pixels that are not covered by an eye become black.
    void compose(const media::Picture &leftHalf, const media::Picture &rightHalf, media::Picture &canvas) {
        if (!geometry_.coversFrame())
            media::Compositor::fillBlack(canvas);
        compositor_.place(leftHalf, geometry_.leftHalf(leftHalf), canvas);
        compositor_.place(rightHalf, geometry_.rightHalf(rightHalf), canvas);
    }

private:
    SBSGeometry geometry_;
    media::Compositor compositor_;
};

} // namespace lumetwin
