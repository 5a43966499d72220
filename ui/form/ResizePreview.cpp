// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/form/ResizePreview.h"

#include "engine/texts/Texts.h"

#include <limits>

namespace lumetwin {

namespace {

/// Twice the width, or the largest integer if that would overflow.
std::int64_t doubledWidth(std::int64_t width) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    return width > most / 2 ? most : width * 2;
}

} // namespace

std::int64_t roundedUpTo16(std::int64_t size) {
    const std::int64_t missing = (16 - size % 16) % 16;
    return size > std::numeric_limits<std::int64_t>::max() - missing ? size : size + missing;
}

bool isOddSize(const ConversionSettings &settings) {
    return settings.resizeWidth % 2 != 0 || settings.resizeHeight % 2 != 0;
}

std::string resizePreview(const ConversionSettings &settings) {
    const std::int64_t width = settings.resizeWidth, height = settings.resizeHeight;
    const bool toSBS = settings.direction == ConversionDirection::spatialToSBS;
    const std::int64_t output = settings.halfWidth ? width : doubledWidth(width);
    const std::string size = toSBS ? formatted("resize.preview.format", output, height, output / 2, height)
                                   : formatted("resize.preview.spatial.format", width, height);
    const std::int64_t wide = roundedUpTo16(width), high = roundedUpTo16(height);
    if (isOddSize(settings))
        return size + "  " + formatted("resize.warn.odd.format", wide, high);
    if (toSBS && (width % 16 != 0 || height % 16 != 0))
        return size + "  " + formatted("resize.warn.not16.format", wide, high);
    return size;
}

} // namespace lumetwin
