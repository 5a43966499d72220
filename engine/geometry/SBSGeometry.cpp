// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/geometry/SBSGeometry.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace lumetwin {

namespace {

std::int64_t doubled(std::int64_t value) {
    std::int64_t result = 0;
    if (__builtin_mul_overflow(value, std::int64_t{2}, &result)) {
        std::fputs("Fatal error: frame width overflows\n", stderr);
        std::abort();
    }
    return result;
}

bool covers(const media::Rect &rect, double width, double height) {
    return rect.x <= 0 && rect.y <= 0 && rect.x + rect.width >= width && rect.y + rect.height >= height;
}

/// The position of the eye in its half; the origin is the lower left corner.
media::Rect eyeInHalf(const ConversionSettings &settings, double srcW, double srcH, double eyeW, double outH) {
    if (!settings.halfWidth)
        return fittedEye(settings.resizeMode, srcW, srcH, eyeW, outH);
    if (!settings.enableResize)
        return {0, 0, eyeW, outH};
    // First scaled to the full target, then compressed to half the width.
    const auto tW = static_cast<double>(settings.resizeWidth);
    const auto tH = static_cast<double>(settings.resizeHeight);
    const media::Rect full = fittedEye(settings.resizeMode, srcW, srcH, tW, tH);
    const double squeeze = eyeW / tW;
    return {full.x * squeeze, full.y, full.width * squeeze, full.height};
}

media::Placement placed(const media::Picture &picture, media::Rect target, const media::Rect &half) {
    target.x += half.x;
    target.y += half.y;
    return {{0, 0, static_cast<double>(picture.width), static_cast<double>(picture.height)}, target, half};
}

} // namespace

media::Rect fittedEye(ResizeMode mode, double srcW, double srcH, double cellW, double cellH) {
    const double sx = cellW / srcW;
    const double sy = cellH / srcH;
    if (mode == ResizeMode::stretch)
        return {0, 0, cellW, cellH};
    if (mode == ResizeMode::cropFill) {
        const double fill = std::max(sx, sy);
        return {-(fill * srcW - cellW) * 0.5, -(fill * srcH - cellH) * 0.5, fill * srcW, fill * srcH};
    }
    const double fit = std::min(sx, sy);
    return {(cellW - fit * srcW) * 0.5, (cellH - fit * srcH) * 0.5, fit * srcW, fit * srcH};
}

media::Rect topDown(const media::Rect &rect, double canvasHeight) {
    return {rect.x, canvasHeight - rect.y - rect.height, rect.width, rect.height};
}

SBSGeometry sbsGeometry(const ConversionSettings &settings, std::int64_t srcW, std::int64_t srcH) {
    SBSGeometry geometry;
    const std::int64_t eyeW0 = settings.enableResize ? settings.resizeWidth : srcW;
    geometry.outH = settings.enableResize ? settings.resizeHeight : srcH;
    geometry.outW = settings.halfWidth ? eyeW0 : doubled(eyeW0);
    geometry.eyeW = geometry.outW / 2;
    const auto outH = static_cast<double>(geometry.outH);
    geometry.eye = topDown(eyeInHalf(settings, static_cast<double>(srcW), static_cast<double>(srcH),
                                     static_cast<double>(geometry.eyeW), outH),
                           outH);
    return geometry;
}

media::Placement SBSGeometry::leftHalf(const media::Picture &picture) const {
    media::Placement left = placed(picture, eye, {0, 0, static_cast<double>(eyeW), static_cast<double>(outH)});
    left.takesSharedSamples = true; // the right half is blended into them
    return left;
}

media::Placement SBSGeometry::rightHalf(const media::Picture &picture) const {
    return placed(picture, eye, {static_cast<double>(eyeW), 0, static_cast<double>(eyeW), static_cast<double>(outH)});
}

bool SBSGeometry::coversFrame() const {
    return outW == 2 * eyeW && covers(eye, static_cast<double>(eyeW), static_cast<double>(outH));
}

} // namespace lumetwin
