// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/protocol/OutcomeCoding.h"

#include "worker/protocol/Reading.h"

#include <algorithm>
#include <string_view>

namespace lumetwin::worker {
namespace {

using Json = nlohmann::json;

constexpr std::size_t mostWarnings = 64;

/// The types of the values of a kind (see model/Warning.h): 'd' integer, 'f' floating point, 's' text.
std::string_view typesOf(WarningKind kind) {
    switch (kind) {
    case WarningKind::speedChanged:
    case WarningKind::soundAway:
    case WarningKind::eyesNotLevel:
    case WarningKind::tooFarBehind:
    case WarningKind::tooNear:
    case WarningKind::disparityChosen:
        return "f";
    case WarningKind::framesMissing:
        return "dd";
    case WarningKind::layoutUsed:
        return "ss";
    case WarningKind::layoutsDisagree:
        return "ssss";
    case WarningKind::withoutSound:
    case WarningKind::soundEndsEarly:
    case WarningKind::sameOutputName:
    case WarningKind::triedAgain:
    case WarningKind::nameSuggestsLayout:
    case WarningKind::pictureSuggestsLayout:
    case WarningKind::notRectilinear:
    case WarningKind::eyesPutRight:
    case WarningKind::stereoValuesTaken:
        return "s";
    case WarningKind::soundTracksLeft:
    case WarningKind::subtitlesLeft:
    case WarningKind::chaptersLeft:
    case WarningKind::rotationLeft:
    case WarningKind::encoderDepth:
    case WarningKind::morePicturesLeft:
        return "d";
    case WarningKind::depthReduced:
        return "dd";
    case WarningKind::standardRange:
    case WarningKind::dynamicRangeLeft:
    case WarningKind::gainMapLeft:
    case WarningKind::depthMapLeft:
    case WarningKind::motionFilmLeft:
    case WarningKind::notStereo:
    case WarningKind::looksFlat:
    case WarningKind::eyesProbablySwapped:
        return "";
    }
    return {};
}

Json encodeWarning(const Warning &warning) {
    Json values = Json::array();
    for (const Warning::Value &value : warning.values)
        std::visit([&](const auto &held) { values.push_back(held); }, value);
    return {{"kind", numberOf(warning.kind)}, {"values", std::move(values)}};
}

Warning::Value decodeWarningValue(const Json &value, char type) {
    if (type == 'd')
        return integer(value);
    if (type == 'f')
        return number(value);
    return string(value);
}

Warning decodeWarning(const Json &content) {
    Warning warning{.kind = caseOf(field(content, "kind"), WarningKind::triedAgain), .values = {}};
    const std::string_view types = typesOf(warning.kind);
    const Json &values = array(field(content, "values"));
    if (values.size() != types.size())
        throw ProtocolError("a warning's values are others");
    for (std::size_t index = 0; index < types.size(); ++index)
        warning.values.push_back(decodeWarningValue(values[index], types[index]));
    return warning;
}

} // namespace

Json encodeOutcome(const Outcome &outcome) {
    Json warnings = Json::array();
    for (const Warning &warning : outcome.warnings)
        warnings.push_back(encodeWarning(warning));
    return {{"written", outcome.written},
            {"framesWritten", outcome.framesWritten},
            {"framesExpected", outcome.framesExpected},
            {"warnings", std::move(warnings)}};
}

Outcome decodeOutcome(const Json &content) {
    Outcome outcome{.written = boolean(field(content, "written")),
                    .framesWritten = integer(field(content, "framesWritten"), 0),
                    .framesExpected = integer(field(content, "framesExpected"), 0),
                    .warnings = {}};
    const Json &warnings = array(field(content, "warnings"));
    if (warnings.size() > mostWarnings)
        throw ProtocolError("too many warnings");
    std::ranges::transform(warnings, std::back_inserter(outcome.warnings), decodeWarning);
    return outcome;
}

} // namespace lumetwin::worker
