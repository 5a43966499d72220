// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/bmff/BoxWriter.h"

#include <array>
#include <cstdint>
#include <optional>

namespace lumetwin::media::heif {

using bmff::Bytes;

/// The numbers of `cmin` (ISO/IEC 23008-12) as stored: value × 2^shift.
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

/// Converts a focal length and a principal point, in image widths and heights, with the largest common shift up to 30
/// for which all three fit, rounded to nearest. (Readers use a signed shift, so 31 would become negative.) Values that
/// do not fit into 32 bits even without a shift, and infinity, become the largest number. nullopt for NaN.
std::optional<FixedIntrinsics> fixedIntrinsics(double focalLength, double principalPointX, double principalPointY);

/// Version, flags and body of `cmin`.
Bytes intrinsicsPayload(const FixedIntrinsics &intrinsics);

/// Version, flags and body of `cmex` (ISO/IEC 23008-12) for a camera without rotation. Components that are 0 and the
/// rotation are omitted.
Bytes extrinsicsPayload(const std::array<std::int32_t, 3> &micrometres,
                        std::optional<std::uint32_t> worldCoordinateSystem = std::nullopt);

/// The disparity adjustment, saturated to 32 bits.
Bytes disparityPayload(std::int64_t adjustment);

} // namespace lumetwin::media::heif
