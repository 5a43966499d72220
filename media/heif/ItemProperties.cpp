// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/ItemProperties.h"

#include <algorithm>
#include <cmath>

namespace lumetwin::media::heif {

namespace {

using bmff::Fields;
using bmff::fourCC;
using bmff::FullBoxHead;

// Bytes; the properties that mean something here are shorter.
constexpr std::uint64_t largestProperty = 512;

Property imageSize(Fields fields) {
    fields.skip(4);
    const std::uint32_t width = fields.u32();
    return ImageSize{width, fields.u32()};
}

Property rotation(Fields fields) {
    HeifTransform transform;
    transform.kind = HeifTransform::Kind::rotate;
    transform.quarterTurns = fields.u8() & 3;
    return transform;
}

// ISO/IEC 23008-12, 6.5.12: 0 swaps top and bottom, 1 left and right.
Property mirroring(Fields fields) {
    HeifTransform transform;
    transform.kind = HeifTransform::Kind::mirror;
    transform.mirrorsVertically = (fields.u8() & 1) == 0;
    return transform;
}

Property cleanAperture(Fields fields) {
    HeifTransform transform;
    transform.kind = HeifTransform::Kind::crop;
    // Width, height and their denominators are unsigned; the offsets are signed over unsigned.
    for (std::size_t index = 0; index < transform.aperture.size(); ++index) {
        const std::uint32_t number = fields.u32();
        const bool isSigned = index == 4 || index == 6;
        transform.aperture[index] = isSigned ? std::int64_t{static_cast<std::int32_t>(number)} : std::int64_t{number};
    }
    return transform;
}

Property intrinsics(Fields fields) {
    const FullBoxHead head(fields);
    if (head.version != 0)
        return {};
    const int shift = static_cast<int>(head.flags >> 8 & 31);
    const int skewShift = static_cast<int>(head.flags >> 16 & 31);
    CameraIntrinsics camera;
    camera.focalLengthX = std::ldexp(fields.i32(), -shift);
    camera.principalPointX = std::ldexp(fields.i32(), -shift);
    camera.principalPointY = std::ldexp(fields.i32(), -shift);
    if (head.flags & 1) {
        camera.focalLengthY = std::ldexp(fields.i32(), -shift);
        camera.skew = std::ldexp(fields.i32(), -skewShift);
    }
    return camera;
}

// Version 1 stores the orientation in another way; the position is the same.
Property position(Fields fields) {
    const FullBoxHead head(fields);
    if (head.version > 1)
        return {};
    CameraPosition camera;
    for (std::size_t axis = 0; axis < camera.micrometres.size(); ++axis)
        if (head.flags & (1u << axis))
            camera.micrometres[axis] = fields.i32();
    return camera;
}

Property uuidProperty(const bmff::Box &box, Fields fields) {
    if (box.uuid == intrinsicsUuid)
        return intrinsics(fields);
    if (box.uuid == extrinsicsUuid)
        return position(fields);
    return DisparityAdjustment{fields.i32()};
}

bool isOurs(const Uuid &uuid) {
    return uuid == intrinsicsUuid || uuid == extrinsicsUuid || uuid == disparityUuid;
}

/// ISO/IEC 23008-12, 6.5.8: version and flags, then a zero-terminated text. An image with a damaged property still
/// counts as auxiliary.
AuxiliaryImage auxiliaryImage(const bmff::Source &source, const bmff::Box &box) {
    constexpr std::uint64_t head = 4;
    constexpr std::uint64_t longest = 256;
    if (box.payloadSize() <= head)
        return {};
    std::string text(static_cast<std::size_t>(std::min(box.payloadSize() - head, longest)), '\0');
    source.read(box.begin + head, {reinterpret_cast<std::uint8_t *>(text.data()), text.size()});
    return {text.substr(0, text.find('\0'))};
}

} // namespace

Property readProperty(const bmff::Source &source, const bmff::Box &box) {
    const auto with = [&](auto read) {
        const auto bytes = bmff::payload(source, box, largestProperty);
        return read(Fields(bytes));
    };
    switch (box.type) {
    case fourCC("ispe"):
        return with(imageSize);
    case fourCC("irot"):
        return with(rotation);
    case fourCC("imir"):
        return with(mirroring);
    case fourCC("clap"):
        return with(cleanAperture);
    case fourCC("cmin"):
        return with(intrinsics);
    case fourCC("cmex"):
        return with(position);
    case fourCC("auxC"):
        return auxiliaryImage(source, box);
    case fourCC("uuid"):
        return isOurs(box.uuid) ? with([&](Fields fields) { return uuidProperty(box, fields); }) : Property{};
    default:
        return {};
    }
}

} // namespace lumetwin::media::heif
