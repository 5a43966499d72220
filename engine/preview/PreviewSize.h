// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/preview/StereoPreview.h"

#include <cstdint>

namespace lumetwin {

struct PreviewSize {
    int width = 0;
    int height = 0;

    bool operator==(const PreviewSize &) const = default;
    std::uint64_t bytes() const {
        return std::uint64_t{4} * static_cast<unsigned>(width) * static_cast<unsigned>(height);
    }
};

/// The largest size with the shape of a picture of `width` × `height` pixels, whose pixels have this aspect (width
/// divided by height), that is within the limits and not larger than the picture. At least 1 × 1.
PreviewSize fittedPreview(double width, double height, double pixelAspect, int maximumWidth, int maximumHeight);

/// The limits of a request, brought to what a picture can have: 1 to 65535, in total no more pixels than are read.
PreviewSize previewLimits(const PreviewRequest &request);

} // namespace lumetwin
