// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/zimg/PlanePainting.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace lumetwin::media::zimg {

namespace {

template <typename Sample> Sample mixed(Sample below, Sample above, float part) {
    return static_cast<Sample>(std::lround(static_cast<float>(below) * (1 - part) + static_cast<float>(above) * part));
}

template <typename Sample> void mixRow(Sample *target, const Sample *source, const PlaneAxis &columns, float part) {
    for (std::size_t index = 0; index < columns.covered.size(); ++index)
        target[index] = mixed(target[index], source[index], columns.covered[index] * part);
}

template <typename Sample> void mixRow(Sample *target, Sample value, const PlaneAxis &columns, float part) {
    for (std::size_t index = 0; index < columns.covered.size(); ++index)
        target[index] = mixed(target[index], value, columns.covered[index] * part);
}

/// Writes a row that is fully covered vertically, so that only its first and last sample can be partly covered.
template <typename Write, typename Sample> void setRow(Sample *target, const PlaneAxis &columns, const Write &write) {
    const std::size_t last = columns.covered.size() - 1;
    const Sample belowFirst = target[0];
    const Sample belowLast = target[last];
    write(target);
    if (columns.covered[0] < 1)
        target[0] = mixed(belowFirst, target[0], columns.covered[0]);
    if (last > 0 && columns.covered[last] < 1)
        target[last] = mixed(belowLast, target[last], columns.covered[last]);
}

template <typename Sample> Sample *rowOf(const PlaneView &plane, int row, int column = 0) {
    return reinterpret_cast<Sample *>(plane.data + row * plane.stride) + column;
}

template <typename Sample>
void paintSamples(const PlaneView &samples, const PlaneGeometry &geometry, const PlaneView &canvas) {
    const auto count = static_cast<std::size_t>(geometry.x.count);
    for (int row = 0; row < geometry.y.count; ++row) {
        const Sample *from = rowOf<Sample>(samples, row);
        Sample *to = rowOf<Sample>(canvas, geometry.y.first + row, geometry.x.first);
        const float part = geometry.y.covered[static_cast<std::size_t>(row)];
        if (part < 1)
            mixRow(to, from, geometry.x, part);
        else
            setRow(to, geometry.x, [&](Sample *target) { std::memcpy(target, from, count * sizeof(Sample)); });
    }
}

template <typename Sample> void paintValue(Sample value, const PlaneGeometry &geometry, const PlaneView &canvas) {
    for (int row = 0; row < geometry.y.count; ++row) {
        Sample *to = rowOf<Sample>(canvas, geometry.y.first + row, geometry.x.first);
        const float part = geometry.y.covered[static_cast<std::size_t>(row)];
        if (part < 1)
            mixRow(to, value, geometry.x, part);
        else
            setRow(to, geometry.x, [&](Sample *target) { std::fill_n(target, geometry.x.count, value); });
    }
}

} // namespace

PlaneView planeOf(const Picture &picture, int plane) {
    return {picture.planes[plane].data, picture.planes[plane].stride, picture.planeWidth(plane),
            picture.planeHeight(plane), picture.format.depth};
}

void fillPlane(const PlaneView &plane, int value) {
    for (int row = 0; row < plane.height; ++row)
        if (plane.depth > 8)
            std::fill_n(rowOf<std::uint16_t>(plane, row), plane.width, static_cast<std::uint16_t>(value));
        else
            std::memset(rowOf<std::uint8_t>(plane, row), value, static_cast<std::size_t>(plane.width));
}

void paint(const PlaneView &samples, const PlaneGeometry &geometry, const PlaneView &canvas) {
    if (canvas.depth > 8)
        paintSamples<std::uint16_t>(samples, geometry, canvas);
    else
        paintSamples<std::uint8_t>(samples, geometry, canvas);
}

void paint(int value, const PlaneGeometry &geometry, const PlaneView &canvas) {
    if (canvas.depth > 8)
        paintValue(static_cast<std::uint16_t>(value), geometry, canvas);
    else
        paintValue(static_cast<std::uint8_t>(value), geometry, canvas);
}

} // namespace lumetwin::media::zimg
