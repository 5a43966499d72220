// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace lumetwin::media {

/// The screen on which a film was mastered (SMPTE ST 2086), in the units of streams and files (ITU-T H.265, D.3.28).
struct MasteringDisplay {
    struct Point {
        std::uint16_t x = 0; ///< CIE 1931, 0.00002
        std::uint16_t y = 0;
        bool operator==(const Point &) const = default;
    };
    Point red;
    Point green;
    Point blue;
    Point white;
    std::uint32_t highest = 0; ///< luminance, 0.0001 cd/m²
    std::uint32_t lowest = 0;  ///< luminance, 0.0001 cd/m²
    bool operator==(const MasteringDisplay &) const = default;
};

/// How bright a film's pictures are (CTA-861.3; ITU-T H.265, D.3.35), in cd/m².
struct ContentLight {
    std::uint16_t highest = 0; ///< of the brightest pixel
    std::uint16_t average = 0; ///< of the brightest picture
    bool operator==(const ContentLight &) const = default;
};

/// What a film says of its brightness.
struct LightLevels {
    std::optional<MasteringDisplay> mastering;
    std::optional<ContentLight> content;
    bool changing = false; ///< also said scene by scene (Dolby Vision, HDR10+), which only readers tell of
    bool operator==(const LightLevels &) const = default;
};

} // namespace lumetwin::media
