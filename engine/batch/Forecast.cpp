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

StereoFindings ofSwappedEyes(StereoFindings findings) {
    findings.probablySwapped = false;
    if (findings.disparity) {
        const DisparityFigures seen = *findings.disparity;
        findings.disparity = DisparityFigures{
            .nearest = -seen.farthest, .middle = -seen.middle, .farthest = -seen.nearest, .vertical = -seen.vertical};
    }
    return findings;
}

std::vector<Warning> forecastWarnings(const MediaFacts &facts, const std::optional<StereoFindings> &findings,
                                      const ConversionSettings &settings) {
    const StereoLayout layout = layoutToRead(facts, settings);
    std::vector<Warning> warnings = layoutWarnings(layout, facts);
    if (findings)
        for (Warning &warning : stereoWarnings(settings.swapLeftRight ? ofSwappedEyes(*findings) : *findings, layout))
            warnings.push_back(std::move(warning));
    std::erase_if(warnings, [](const Warning &warning) { return isNote(warning.kind); });
    return warnings;
}

} // namespace lumetwin
