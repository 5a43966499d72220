// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/PictureCheck.h"

#include "engine/ConversionInput.h"
#include "engine/stereo/SourceLayout.h"
#include "engine/stereo/StereoMetadata.h"
#include "engine/stereo/StereoWarnings.h"
#include "engine/texts/ProcessorError.h"

namespace lumetwin {

namespace {

/// The layout whose left eye becomes the left eye of the result.
StereoLayout usedLayout(const ConversionSettings &settings, const MediaFacts &facts) {
    StereoLayout layout = sourceLayout(settings.inputLayout, facts);
    layout.rightEyeFirst = layout.rightEyeFirst != settings.swapLeftRight;
    return layout;
}

PictureCheck checked(const MediaOperations &operations, const ConversionSettings &settings,
                     const ConversionInput &input) {
    const StereoLayout layout = usedLayout(settings, operations.lookClosely(input));
    const StereoFindings findings = operations.examine(input, layout);
    PictureCheck check;
    check.disparity = findings.disparity;
    if (settings.automaticDisparity && findings.disparity && !findings.probablySwapped)
        check.adjustment = chosenAdjustment(*findings.disparity);
    if (settings.checkStereo)
        check.warnings = stereoWarnings(findings, layout, check.adjustment.value_or(0));
    if (check.adjustment)
        check.warnings.push_back({WarningKind::disparityChosen, {*check.adjustment}});
    return check;
}

} // namespace

PictureCheck checkPicture(const MediaOperations &operations, const ConversionSettings &settings,
                          const ConversionInput &input) {
    const bool isAsked = settings.checkStereo || settings.automaticDisparity;
    if (!isAsked || settings.direction != ConversionDirection::sbsToSpatial)
        return {};
    try {
        return checked(operations, settings, input);
    } catch (const std::exception &error) {
        PictureCheck check;
        check.failure = errorText(error);
        return check;
    }
}

std::vector<Warning> expectedWarnings(const MediaOperations &operations, const ConversionSettings &settings,
                                      const ConversionInput &input) {
    if (settings.direction != ConversionDirection::sbsToSpatial)
        return {};
    const MediaFacts facts = operations.lookClosely(input);
    const StereoLayout layout = sourceLayout(settings.inputLayout, facts);
    requireReadable(layout);
    std::vector<Warning> warnings = layoutWarnings(layout, facts);
    if (const std::optional<Warning> note = stereoValuesNote(settings, facts))
        warnings.push_back(*note);
    return warnings;
}

} // namespace lumetwin
