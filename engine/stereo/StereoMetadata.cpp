// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/StereoMetadata.h"

#include "engine/texts/Texts.h"

#include <string>

namespace lumetwin {

namespace {

/// The value of the file, where it replaces that of the settings.
std::optional<double> taken(const ConversionSettings &settings, double setting, const std::optional<double> &file,
                            const NumberRange &range) {
    const bool isAsked = settings.stereoValuesSource == StereoValuesSource::file && setting == range.start;
    return isAsked && file && range.accepts(*file) ? file : std::nullopt;
}

struct Taken {
    std::optional<double> horizontalFOV;
    std::optional<double> disparity;
    std::optional<double> baseline;

    Taken(const ConversionSettings &settings, const StereoValues &file)
        : horizontalFOV(taken(settings, settings.horizontalFOV, file.horizontalFOV, fovRange)),
          disparity(settings.automaticDisparity
                        ? std::nullopt
                        : taken(settings, settings.disparityAdjustment, file.disparity, disparityRange)),
          baseline(taken(settings, settings.stereoBaseline, file.stereoBaseline, baselineRange)) {}
};

} // namespace

StereoMetadata stereoMetadata(const ConversionSettings &settings, const MediaFacts &facts,
                              const std::optional<double> &chosenAdjustment) {
    const Taken file(settings, facts.values);
    StereoMetadata values(settings);
    values.horizontalFOV = file.horizontalFOV.value_or(values.horizontalFOV);
    values.disparityAdjustment = chosenAdjustment.value_or(file.disparity.value_or(values.disparityAdjustment));
    values.stereoBaseline = file.baseline.value_or(values.stereoBaseline);
    return values;
}

std::optional<Warning> stereoValuesNote(const ConversionSettings &settings, const MediaFacts &facts) {
    const Taken file(settings, facts.values);
    std::string list;
    const auto add = [&list](const char *key, const std::optional<double> &value) {
        if (value)
            list += (list.empty() ? "" : text("list.separator")) + formatted(key, *value);
    };
    add("value.fov.format", file.horizontalFOV);
    add("value.disparity.format", file.disparity);
    add("value.baseline.format", file.baseline);
    return list.empty() ? std::nullopt : std::optional(Warning{WarningKind::stereoValuesTaken, {list}});
}

} // namespace lumetwin
