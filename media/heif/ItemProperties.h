// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/bmff/BoxReader.h"
#include "media/heif/HeifFile.h"

#include <array>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace lumetwin::media::heif {

// Platform-written files store the camera and the disparity adjustment in properties of type `uuid`. The first two have
// the body of `cmin` and `cmex` (ISO/IEC 23008-12), the third has only a signed 32-bit number.
using Uuid = std::array<std::uint8_t, 16>;
inline constexpr Uuid intrinsicsUuid{0x22, 0xcc, 0x04, 0xc7, 0xd6, 0xd9, 0x4e, 0x07,
                                     0x9d, 0x90, 0x4e, 0xb6, 0xec, 0xba, 0xf3, 0xa3};
inline constexpr Uuid extrinsicsUuid{0x43, 0x63, 0xe9, 0x14, 0x5b, 0x7d, 0x4a, 0xab,
                                     0x97, 0xae, 0xbe, 0xa6, 0x98, 0x03, 0xb4, 0x34};
inline constexpr Uuid disparityUuid{0xde, 0x22, 0x50, 0x85, 0x36, 0xcb, 0x43, 0x65,
                                    0x87, 0x43, 0x2f, 0x87, 0x05, 0xe7, 0xc7, 0x8a};

struct ImageSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};
struct CameraPosition {
    std::array<std::int32_t, 3> micrometres{};
};
struct DisparityAdjustment {
    std::int32_t value = 0;
};
struct AuxiliaryImage {
    std::string kind; ///< a URN; only the first characters, enough to identify it
};

/// An item property that we use. The first alternative stands for any other property.
using Property = std::variant<std::monostate, ImageSize, HeifTransform, CameraIntrinsics, CameraPosition,
                              DisparityAdjustment, AuxiliaryImage>;

/// Reads one box of `ipco`. Throws bmff::FormatError when it is damaged.
Property readProperty(const bmff::Source &source, const bmff::Box &box);

} // namespace lumetwin::media::heif
