// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"
#include "model/MediaFacts.h"
#include "model/Warning.h"

#include <optional>

namespace lumetwin {

/// The stereo values that are written into a spatial file, in the units of the form.
struct StereoMetadata {
    double horizontalFOV = fovRange.start;             ///< degrees
    double disparityAdjustment = disparityRange.start; ///< percent of the image width
    double stereoBaseline = baselineRange.start;       ///< millimetres

    StereoMetadata(const ConversionSettings &settings) // NOLINT: the settings say all of them
        : horizontalFOV(settings.horizontalFOV), disparityAdjustment(settings.disparityAdjustment),
          stereoBaseline(settings.stereoBaseline) {}
};

/// The values for one file: those of the settings. With StereoValuesSource::file, a setting that has its default gives
/// way to the value of the file, if the file has one and the setting could have it too. A disparity adjustment that was
/// chosen from the picture replaces both.
StereoMetadata stereoMetadata(const ConversionSettings &settings, const MediaFacts &facts,
                              const std::optional<double> &chosenAdjustment = {});

/// Names the values that stereoMetadata() takes from the file; nullopt where there are none.
std::optional<Warning> stereoValuesNote(const ConversionSettings &settings, const MediaFacts &facts);

} // namespace lumetwin
