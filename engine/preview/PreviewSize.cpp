// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/preview/PreviewSize.h"

#include "media/Image.h"
#include "model/SettingsRules.h"

#include <algorithm>
#include <cmath>

namespace lumetwin {

PreviewSize fittedPreview(double width, double height, double pixelAspect, int maximumWidth, int maximumHeight) {
    // Pixels become square by reducing their longer side.
    const double shownWidth = std::max(1.0, width * std::min(1.0, pixelAspect));
    const double shownHeight = std::max(1.0, height / std::max(1.0, pixelAspect));
    const double scale = std::min({1.0, maximumWidth / shownWidth, maximumHeight / shownHeight});
    const auto side = [&](double length, int limit) {
        return std::clamp(static_cast<int>(std::lround(length * scale)), 1, std::max(1, limit));
    };
    return {side(shownWidth, maximumWidth), side(shownHeight, maximumHeight)};
}

PreviewSize previewLimits(const PreviewRequest &request) {
    const auto side = [](int limit) {
        return std::clamp(limit, static_cast<int>(smallestSide), static_cast<int>(largestSide));
    };
    PreviewSize limits{side(request.maximumWidth), side(request.maximumHeight)};
    limits.height = std::min(limits.height, static_cast<int>(media::maximumPixels / limits.width));
    return limits;
}

} // namespace lumetwin
