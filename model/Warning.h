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
    speedChanged,   ///< percent by which the video plays faster than its source (negative: slower)
    soundAway,      ///< seconds: the largest distance of a picture from its sound
    framesMissing,  ///< frames written, frames expected
    withoutSound,   ///< why the sound could not be read
    soundEndsEarly, ///< the reason
    sameOutputName, ///< the name of another input of the run whose output has the same name
    // Notes, less important than warnings: what was not kept.
    soundTracksLeft, ///< number of further sound tracks
    subtitlesLeft,   ///< number of subtitle tracks
    chaptersLeft,    ///< number of chapters
    rotationLeft,    ///< rotation of the video, in degrees clockwise
    depthReduced,    ///< bits per sample of the source
    gainMapLeft,
    depthMapLeft,
    motionFilmLeft,
    triedAgain, ///< what happened to the process of the first attempt
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
    case WarningKind::gainMapLeft:
        return "gainMapLeft";
    case WarningKind::depthMapLeft:
        return "depthMapLeft";
    case WarningKind::motionFilmLeft:
        return "motionFilmLeft";
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
