// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>

namespace lumetwin {

/// The size in which a file shows its picture, in pixels.
struct PictureFacts {
    std::int64_t width = 0;
    std::int64_t height = 0;

    /// Whether the picture is as wide as two of a usual shape beside each other. Half-width packing cannot be seen
    /// from outside.
    bool looksSideBySide() const;
};

/// Those of a photo (by its extension) or a movie's first video track. Throws the error that says why a file cannot be
/// read.
PictureFacts pictureFacts(const std::filesystem::path &file);

} // namespace lumetwin
