// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/WarningTexts.h"

#include "engine/texts/Texts.h"

#include <fmt/args.h>

#include <cmath>

namespace lumetwin {
namespace {

std::string_view warningKey(WarningKind kind) {
    switch (kind) {
    case WarningKind::speedChanged:
        return "warning.speed.faster.format";
    case WarningKind::soundAway:
        return "warning.sound.away.format";
    case WarningKind::framesMissing:
        return "warning.frames.missing.format";
    case WarningKind::withoutSound:
        return "warning.without.sound.format";
    case WarningKind::soundEndsEarly:
        return "warning.sound.ends.early.format";
    case WarningKind::sameOutputName:
        return "warning.same.output.name.format";
    case WarningKind::layoutsDisagree:
        return "warning.layouts.disagree.format";
    case WarningKind::nameSuggestsLayout:
        return "warning.name.suggests.layout.format";
    case WarningKind::pictureSuggestsLayout:
        return "warning.picture.suggests.layout.format";
    case WarningKind::notRectilinear:
        return "warning.not.rectilinear.format";
    case WarningKind::notStereo:
        return "warning.not.stereo";
    case WarningKind::looksFlat:
        return "warning.looks.flat";
    case WarningKind::eyesNotLevel:
        return "warning.eyes.not.level.format";
    case WarningKind::eyesProbablySwapped:
        return "warning.eyes.probably.swapped";
    case WarningKind::tooFarBehind:
        return "warning.too.far.behind.format";
    case WarningKind::tooNear:
        return "warning.too.near.format";
    case WarningKind::soundTracksLeft:
        return "note.sound.tracks.left.format";
    case WarningKind::subtitlesLeft:
        return "note.subtitles.left.format";
    case WarningKind::chaptersLeft:
        return "note.chapters.left.format";
    case WarningKind::rotationLeft:
        return "note.rotation.left.format";
    case WarningKind::depthReduced:
        return "note.depth.reduced.format";
    case WarningKind::encoderDepth:
        return "note.encoder.depth.format";
    case WarningKind::standardRange:
        return "note.standard.range";
    case WarningKind::dynamicRangeLeft:
        return "note.dynamic.range.left";
    case WarningKind::gainMapLeft:
        return "note.gain.map.left";
    case WarningKind::depthMapLeft:
        return "note.depth.map.left";
    case WarningKind::motionFilmLeft:
        return "note.motion.film.left";
    case WarningKind::layoutUsed:
        return "note.layout.used.format";
    case WarningKind::eyesPutRight:
        return "note.eyes.put.right.format";
    case WarningKind::morePicturesLeft:
        return "note.more.pictures.left.format";
    case WarningKind::stereoValuesTaken:
        return "note.stereo.values.taken.format";
    case WarningKind::disparityChosen:
        return "note.disparity.chosen.format";
    case WarningKind::triedAgain:
        return "note.tried.again.format";
    }
    return {};
}

} // namespace

std::string warningText(const Warning &warning) {
    if (warning.kind == WarningKind::speedChanged) {
        const double percent = std::get<double>(warning.values.at(0));
        return formatted(percent < 0 ? "warning.speed.slower.format" : warningKey(warning.kind), std::abs(percent));
    }
    fmt::dynamic_format_arg_store<fmt::printf_context> values;
    for (const Warning::Value &value : warning.values)
        std::visit([&](const auto &held) { values.push_back(held); }, value);
    const std::string format = text(warningKey(warning.kind));
    return fmt::vsprintf(fmt::string_view(format), fmt::basic_format_args<fmt::printf_context>(values));
}

} // namespace lumetwin
