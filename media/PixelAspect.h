// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media {

/// The display width and height of a pixel; 1 : 1 for almost all videos, other values for some camcorders and discs.
struct PixelAspect {
    int width = 1;
    int height = 1;

    bool operator==(const PixelAspect &) const = default;
};

} // namespace lumetwin::media
