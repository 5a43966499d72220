// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/bmff/BoxWriter.h"

#include <array>
#include <cstdint>
#include <optional>

namespace lumetwin::media::heif {

using bmff::Bytes;

/// The numbers of `cmin` (ISO/IEC 23008-12) as they are stored: value × 2^shift.
struct FixedIntrinsics {
    struct Anisotropic {
        std::int32_t focalLengthY = 0;
        std::int32_t skew = 0;
        int skewShift = 0;
    };
    int shift = 0; ///< 0 to 31
    std::int32_t focalLengthX = 0;
    std::int32_t principalPointX = 0;
    std::int32_t principalPointY = 0;
    std::optional<Anisotropic> anisotropic;

    bool operator==(const FixedIntrinsics &other) const {
        return shift == other.shift && focalLengthX == other.focalLengthX && principalPointX == other.principalPointX &&
               principalPointY == other.principalPointY;
    }
};

/// Stores a focal length and a principal point, given in image widths and heights, with the largest common shift up to
/// 30 that holds all three, rounded to nearest. (Readers shift a signed one; 31 would turn it negative.) What is beyond
/// 32 bits even unshifted, infinity too, becomes the largest number. Nothing for what is no number.
std::optional<FixedIntrinsics> fixedIntrinsics(double focalLength, double principalPointX, double principalPointY);

/// Version, flags and body of `cmin`.
Bytes intrinsicsPayload(const FixedIntrinsics &intrinsics);

/// Version, flags and body of `cmex` (ISO/IEC 23008-12) for a camera that is not turned: components that are 0 and the
/// rotation are left out.
Bytes extrinsicsPayload(const std::array<std::int32_t, 3> &micrometres,
                        std::optional<std::uint32_t> worldCoordinateSystem = std::nullopt);

/// The disparity adjustment, saturated to 32 bits.
Bytes disparityPayload(std::int64_t adjustment);

} // namespace lumetwin::media::heif
