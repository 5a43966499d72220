// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/EyeExtraction.h"

#include "engine/geometry/SBSGeometry.h"

#include <algorithm>

namespace lumetwin {

namespace {

/// The target rectangle of a half of the given size on an eye's canvas.
media::Rect eyeTarget(const ConversionSettings &settings, const EyeSize &eye, double halfWidth, double height) {
    const auto eyeWidth = static_cast<double>(eye.width);
    const auto eyeHeight = static_cast<double>(eye.height);
    if (!settings.enableResize)
        return {0, 0, halfWidth, height};
    return topDown(fittedEye(settings.resizeMode, halfWidth, height, eyeWidth, eyeHeight), eyeHeight);
}

} // namespace

EyeExtraction eyeExtraction(const ConversionSettings &settings, const EyeSize &eye, std::int64_t sourceWidth,
                            std::int64_t sourceHeight) {
    const std::int64_t columns = sourceWidth / 2; // the last column of an odd width belongs to no eye
    const auto halfWidth = static_cast<double>(columns);
    const auto height = static_cast<double>(sourceHeight);
    const media::Rect target = eyeTarget(settings, eye, halfWidth, height);
    const media::Rect canvas{0, 0, static_cast<double>(eye.width), static_cast<double>(eye.height)};
    const media::Placement first{{0, 0, halfWidth, height}, target, canvas};
    const media::Placement second{{halfWidth, 0, halfWidth, height}, target, canvas};
    EyeExtraction extraction{{first, second}, target == media::Rect{0, 0, halfWidth, height} && target == canvas};
    if (settings.swapLeftRight)
        std::swap(extraction.left, extraction.right);
    return extraction;
}

media::Placement withinPicture(const media::Placement &placement, int width, int height) {
    const media::Rect &source = placement.source;
    const double shownWidth = std::clamp(width - source.x, 0.0, source.width);
    const double shownHeight = std::clamp(height - source.y, 0.0, source.height);
    media::Placement part = placement;
    part.source.width = shownWidth;
    part.source.height = shownHeight;
    part.target.width = placement.target.width * (shownWidth / source.width);
    part.target.height = placement.target.height * (shownHeight / source.height);
    return part;
}

} // namespace lumetwin
