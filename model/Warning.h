// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace lumetwin {

/// What the user should know about a converted file. The comment of each kind lists its values, in their order.
enum class WarningKind {
    // Warnings: the result differs from the source.
    speedChanged,          ///< percent by which the video plays faster than its source (negative: slower)
    soundAway,             ///< seconds: the largest distance of a picture from its sound
    framesMissing,         ///< frames written, frames expected
    withoutSound,          ///< why the sound could not be read
    soundEndsEarly,        ///< the reason
    sameOutputName,        ///< the name of another input of the run whose output has the same name
    layoutsDisagree,       ///< the layout that is used, who says so; the other one, who says so
    nameSuggestsLayout,    ///< the layout that the name of the file suggests, and that is not used
    pictureSuggestsLayout, ///< the layout that the picture looks like, and that is not used
    notRectilinear,        ///< the projection
    notStereo,
    looksFlat,
    eyesNotLevel, ///< vertical offset of the eyes, in percent of the width of an eye
    eyesProbablySwapped,
    tooFarBehind, ///< disparity of the far parts, in percent of the width of an eye
    tooNear,      ///< disparity of the near parts, in percent of the width of an eye (positive)
    // Notes, less important than warnings: what was not kept.
    soundTracksLeft,  ///< number of further sound tracks
    subtitlesLeft,    ///< number of subtitle tracks
    chaptersLeft,     ///< number of chapters
    rotationLeft,     ///< rotation of the video, in degrees clockwise
    depthReduced,     ///< bits per sample of the source, and of the output
    encoderDepth,     ///< bits per sample of the output: the encoder codes no more
    standardRange,    ///< the colours of an HDR source were converted
    dynamicRangeLeft, ///< what an HDR source says of each scene
    gainMapLeft,
    depthMapLeft,
    motionFilmLeft,
    layoutUsed,        ///< the layout that is used, who says so
    eyesPutRight,      ///< who says that the right eye comes first
    morePicturesLeft,  ///< number of further pictures
    stereoValuesTaken, ///< the values that were taken from the file
    disparityChosen,   ///< percent of the width of an eye
    triedAgain,        ///< what happened to the process of the first attempt
};

/// The stable name of a kind, for programs.
constexpr std::string_view rawValue(WarningKind kind) {
    switch (kind) {
    case WarningKind::speedChanged:
        return "speedChanged";
    case WarningKind::soundAway:
        return "soundAway";
    case WarningKind::framesMissing:
        return "framesMissing";
    case WarningKind::withoutSound:
        return "withoutSound";
    case WarningKind::soundEndsEarly:
        return "soundEndsEarly";
    case WarningKind::sameOutputName:
        return "sameOutputName";
    case WarningKind::layoutsDisagree:
        return "layoutsDisagree";
    case WarningKind::nameSuggestsLayout:
        return "nameSuggestsLayout";
    case WarningKind::pictureSuggestsLayout:
        return "pictureSuggestsLayout";
    case WarningKind::notRectilinear:
        return "notRectilinear";
    case WarningKind::notStereo:
        return "notStereo";
    case WarningKind::looksFlat:
        return "looksFlat";
    case WarningKind::eyesNotLevel:
        return "eyesNotLevel";
    case WarningKind::eyesProbablySwapped:
        return "eyesProbablySwapped";
    case WarningKind::tooFarBehind:
        return "tooFarBehind";
    case WarningKind::tooNear:
        return "tooNear";
    case WarningKind::soundTracksLeft:
        return "soundTracksLeft";
    case WarningKind::subtitlesLeft:
        return "subtitlesLeft";
    case WarningKind::chaptersLeft:
        return "chaptersLeft";
    case WarningKind::rotationLeft:
        return "rotationLeft";
    case WarningKind::depthReduced:
        return "depthReduced";
    case WarningKind::encoderDepth:
        return "encoderDepth";
    case WarningKind::standardRange:
        return "standardRange";
    case WarningKind::dynamicRangeLeft:
        return "dynamicRangeLeft";
    case WarningKind::gainMapLeft:
        return "gainMapLeft";
    case WarningKind::depthMapLeft:
        return "depthMapLeft";
    case WarningKind::motionFilmLeft:
        return "motionFilmLeft";
    case WarningKind::layoutUsed:
        return "layoutUsed";
    case WarningKind::eyesPutRight:
        return "eyesPutRight";
    case WarningKind::morePicturesLeft:
        return "morePicturesLeft";
    case WarningKind::stereoValuesTaken:
        return "stereoValuesTaken";
    case WarningKind::disparityChosen:
        return "disparityChosen";
    case WarningKind::triedAgain:
        return "triedAgain";
    }
    return {};
}

/// Whether a kind is a note, which is less important than a warning.
constexpr bool isNote(WarningKind kind) {
    return kind >= WarningKind::soundTracksLeft;
}

/// One warning or note. The values are those that the kind lists.
struct Warning {
    using Value = std::variant<std::int64_t, double, std::string>;

    WarningKind kind = WarningKind::framesMissing;
    std::vector<Value> values;

    bool operator==(const Warning &) const = default;
};

} // namespace lumetwin
