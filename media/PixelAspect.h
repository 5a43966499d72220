// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media {

/// Width to height of a pixel as it is shown; 1 : 1 for almost every film, others for some camcorders' and discs'.
struct PixelAspect {
    int width = 1;
    int height = 1;

    bool operator==(const PixelAspect &) const = default;
};

} // namespace lumetwin::media
