// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/EyeExtraction.h"

#include "engine/geometry/SBSGeometry.h"

#include <algorithm>

namespace lumetwin {

namespace {

/// The target rectangle of a cell on an eye's canvas.
media::Rect eyeTarget(const ConversionSettings &settings, const EyeSize &eye, const EyeCells &cells) {
    const auto shownWidth = static_cast<double>(cells.shownWidth);
    const auto shownHeight = static_cast<double>(cells.shownHeight);
    if (!settings.enableResize)
        return {0, 0, shownWidth, shownHeight};
    const auto eyeHeight = static_cast<double>(eye.height);
    return topDown(fittedEye(settings.resizeMode, shownWidth, shownHeight, static_cast<double>(eye.width), eyeHeight),
                   eyeHeight);
}

} // namespace

EyeSize eyeSize(const ConversionSettings &settings, const EyeCells &cells) {
    if (settings.enableResize)
        return {settings.resizeWidth, settings.resizeHeight};
    return {cells.shownWidth, cells.shownHeight};
}

EyeExtraction eyeExtraction(const ConversionSettings &settings, const EyeSize &eye, const EyeCells &cells) {
    const media::Rect target = eyeTarget(settings, eye, cells);
    const media::Rect canvas{0, 0, static_cast<double>(eye.width), static_cast<double>(eye.height)};
    const media::Rect unscaled{0, 0, cells.left.width, cells.left.height};
    EyeExtraction extraction{{{cells.left, target, canvas}, {cells.right, target, canvas}},
                             target == unscaled && target == canvas};
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
