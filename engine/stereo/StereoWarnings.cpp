// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/StereoWarnings.h"

#include "engine/texts/LayoutTexts.h"
#include "model/SettingsRules.h"

#include <algorithm>
#include <cmath>

namespace lumetwin {

namespace {

// The limits of broadcasters, in percent of the width.
constexpr double farthestLimit = 2;
constexpr double nearestLimit = -1;

void addComfort(const DisparityFigures &disparity, double adjustment, std::vector<Warning> &warnings) {
    constexpr double rounding = 0.05; // what is shown as 2.0 % is not beyond 2 %
    const double farthest = disparity.farthest + adjustment;
    const double nearest = disparity.nearest + adjustment;
    if (farthest > farthestLimit + rounding)
        warnings.push_back({WarningKind::tooFarBehind, {farthest}});
    if (nearest < nearestLimit - rounding)
        warnings.push_back({WarningKind::tooNear, {-nearest}});
}

} // namespace

double chosenAdjustment(const DisparityFigures &disparity) {
    const double decimals = std::pow(10, disparityRange.decimals);
    const double adjustment = std::round((farthestLimit - disparity.farthest) * decimals) / decimals;
    return std::clamp(adjustment, disparityRange.minimum, disparityRange.maximum);
}

std::vector<Warning> stereoWarnings(const StereoFindings &findings, const StereoLayout &layout, double adjustment) {
    if (!findings.wasExamined)
        return {};
    if (!findings.seen)
        return {{WarningKind::notStereo, {}}};
    if (*findings.seen != layout.arrangement) {
        const StereoLayout seen{.arrangement = *findings.seen, .source = LayoutSource::picture};
        return {{WarningKind::pictureSuggestsLayout, {layoutWords(seen).shown}}};
    }
    std::vector<Warning> warnings;
    const DisparityFigures disparity = findings.disparity.value_or(DisparityFigures());
    if (findings.looksFlat)
        warnings.push_back({WarningKind::looksFlat, {}});
    if (!findings.isLevel)
        warnings.push_back({WarningKind::eyesNotLevel, {std::max(std::abs(disparity.vertical), findings.unevenness)}});
    if (findings.probablySwapped)
        warnings.push_back({WarningKind::eyesProbablySwapped, {}});
    else
        addComfort(disparity, adjustment, warnings); // of exchanged eyes the figures have the wrong sign
    return warnings;
}

} // namespace lumetwin
