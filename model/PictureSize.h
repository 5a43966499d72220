// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace lumetwin {

/// The size in which a file shows its picture, in pixels.
struct PictureSize {
    std::int64_t width = 0;
    std::int64_t height = 0;

    bool operator==(const PictureSize &) const = default;

    /// Whether the picture is as wide as two of a usual shape beside each other. Half-width packing cannot be seen
    /// from outside.
    bool looksSideBySide() const {
        // Two pictures of 4:3 are 2.67 times as wide as high; a single wide film is 2.4.
        constexpr double twoPictures = 2.55;
        return height > 0 && static_cast<double>(width) / static_cast<double>(height) >= twoPictures;
    }
};

} // namespace lumetwin
