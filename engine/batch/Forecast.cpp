// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/Forecast.h"

#include "engine/inspection/Inspection.h"
#include "engine/stereo/SourceLayout.h"
#include "engine/stereo/StereoWarnings.h"
#include "engine/texts/ProcessorError.h"

#include <utility>

namespace lumetwin {

bool isSpatialMedia(const MediaFacts &facts) {
    return isSpatialPhoto(facts) || isSpatialVideo(facts);
}

StereoLayout layoutToRead(const MediaFacts &facts, const ConversionSettings &settings) {
    return sourceLayout(settings.inputLayout, facts);
}

std::string reasonNotToRead(const StereoLayout &layout) {
    try {
        requireReadable(layout);
    } catch (const ProcessorError &error) {
        return errorMessage(error);
    }
    return {};
}

std::vector<Warning> forecastWarnings(const MediaFacts &facts, const std::optional<StereoFindings> &findings,
                                      const ConversionSettings &settings) {
    StereoLayout layout = layoutToRead(facts, settings);
    std::vector<Warning> warnings = layoutWarnings(layout, facts);
    layout.rightEyeFirst = layout.rightEyeFirst != settings.swapLeftRight;
    if (findings)
        for (Warning &warning : stereoWarnings(*findings, layout))
            warnings.push_back(std::move(warning));
    std::erase_if(warnings, [](const Warning &warning) { return isNote(warning.kind); });
    return warnings;
}

} // namespace lumetwin
