// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/CameraProperties.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lumetwin::media::heif {

using bmff::FieldWriter;

namespace {

constexpr int largestShift = 30;
constexpr double largest = std::numeric_limits<std::int32_t>::max();
constexpr double smallest = std::numeric_limits<std::int32_t>::min();

std::int32_t saturated(double value) {
    return std::isnan(value) ? 0 : static_cast<std::int32_t>(std::clamp(std::round(value), smallest, largest));
}

} // namespace

std::optional<FixedIntrinsics> fixedIntrinsics(double focalLength, double principalPointX, double principalPointY) {
    if (std::isnan(focalLength) || std::isnan(principalPointX) || std::isnan(principalPointY))
        return std::nullopt;
    const double extent = std::max({std::abs(focalLength), std::abs(principalPointX), std::abs(principalPointY)});
    int shift = largestShift;
    while (shift > 0 && std::round(std::ldexp(extent, shift)) > largest)
        --shift;
    FixedIntrinsics fixed;
    fixed.shift = shift;
    fixed.focalLengthX = saturated(std::ldexp(focalLength, shift));
    fixed.principalPointX = saturated(std::ldexp(principalPointX, shift));
    fixed.principalPointY = saturated(std::ldexp(principalPointY, shift));
    return fixed;
}

Bytes intrinsicsPayload(const FixedIntrinsics &intrinsics) {
    const auto &more = intrinsics.anisotropic;
    const std::uint32_t flags = static_cast<std::uint32_t>(intrinsics.shift) << 8 |
                                static_cast<std::uint32_t>(more ? more->skewShift : 0) << 16 | (more ? 1u : 0u);
    FieldWriter fields;
    fields.u32(flags).i32(intrinsics.focalLengthX).i32(intrinsics.principalPointX).i32(intrinsics.principalPointY);
    if (more)
        fields.i32(more->focalLengthY).i32(more->skew);
    return fields.bytes();
}

Bytes extrinsicsPayload(const std::array<std::int32_t, 3> &micrometres,
                        std::optional<std::uint32_t> worldCoordinateSystem) {
    constexpr std::uint32_t worldFlag = 0x20;
    std::uint32_t flags = worldCoordinateSystem ? worldFlag : 0;
    FieldWriter positions;
    for (std::size_t axis = 0; axis < micrometres.size(); ++axis)
        if (micrometres[axis] != 0) {
            flags |= 1u << axis;
            positions.i32(micrometres[axis]);
        }
    FieldWriter fields;
    fields.u32(flags).append(positions.bytes());
    if (worldCoordinateSystem)
        fields.u32(*worldCoordinateSystem);
    return fields.bytes();
}

Bytes disparityPayload(std::int64_t adjustment) {
    const auto value = std::clamp<std::int64_t>(adjustment, std::numeric_limits<std::int32_t>::min(),
                                                std::numeric_limits<std::int32_t>::max());
    return FieldWriter().i32(static_cast<std::int32_t>(value)).bytes();
}

} // namespace lumetwin::media::heif
