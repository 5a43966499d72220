// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>

namespace lumetwin {

/// How an eye is scaled to the resize target. The raw value of a mode is its position.
enum class ResizeMode {
    stretch = 0,   ///< scaled to the target, aspect ratio ignored
    cropFill = 1,  ///< aspect ratio kept, the centre fills the target
    letterbox = 2, ///< aspect ratio kept, black bars fill the rest
};

inline constexpr std::array allResizeModes{ResizeMode::stretch, ResizeMode::cropFill, ResizeMode::letterbox};

constexpr int rawValue(ResizeMode mode) {
    return static_cast<int>(mode);
}

/// The mode with a raw value; nullopt for any integer except 0, 1 and 2.
constexpr std::optional<ResizeMode> resizeMode(int raw) {
    if (raw < 0 || raw >= static_cast<int>(allResizeModes.size()))
        return std::nullopt;
    return static_cast<ResizeMode>(raw);
}

} // namespace lumetwin
