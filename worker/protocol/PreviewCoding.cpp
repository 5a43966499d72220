// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/protocol/PreviewCoding.h"

#include "worker/protocol/FactsCoding.h"
#include "worker/protocol/Reading.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lumetwin::worker {
namespace {

using Json = nlohmann::json;

constexpr int largestInt = std::numeric_limits<int>::max();
constexpr double longestFilm = 1e9; ///< seconds
constexpr double fastestFilm = 1e6; ///< frames per second
constexpr double narrowestPixel = 1.0 / 8;
constexpr double widestPixel = 8;

int smallInteger(const Json &value, int lowest) {
    return static_cast<int>(integer(value, lowest, largestInt));
}

double numberIn(const Json &value, double lowest, double highest) {
    const double given = number(value);
    if (given < lowest || given > highest)
        throw ProtocolError("no such number");
    return given;
}

/// A number that a damaged file may have made impossible; 0 then.
double known(double value, double highest) {
    return std::isfinite(value) && value >= 0 && value <= highest ? value : 0;
}

StereoLayout requiredLayout(const Json &value) {
    const std::optional<StereoLayout> layout = decodeLayout(value);
    if (!layout)
        throw ProtocolError("no layout");
    return *layout;
}

} // namespace

Json encodePreviewRequest(const PreviewRequest &request) {
    return {{"layout", encodeLayout(request.layout)},
            {"position", request.position},
            {"detail", static_cast<int>(request.detail)},
            {"maximumWidth", request.maximumWidth},
            {"maximumHeight", request.maximumHeight}};
}

PreviewRequest decodePreviewRequest(const Json &content) {
    return {.layout = requiredLayout(field(content, "layout")),
            .position = numberIn(field(content, "position"), 0, 1),
            .detail =
                static_cast<PreviewDetail>(integer(field(content, "detail"), 0, static_cast<int>(PreviewDetail::soon))),
            .maximumWidth = smallInteger(field(content, "maximumWidth"), std::numeric_limits<int>::min()),
            .maximumHeight = smallInteger(field(content, "maximumHeight"), std::numeric_limits<int>::min())};
}

Json encodePreviewFacts(const PreviewFacts &facts) {
    const bool hasShape = facts.pixelAspect >= narrowestPixel && facts.pixelAspect <= widestPixel;
    return {{"width", facts.width},
            {"height", facts.height},
            {"hasBothEyes", facts.hasBothEyes},
            {"isFlat", facts.isFlat},
            {"eyeWidth", facts.eyeWidth},
            {"eyeHeight", facts.eyeHeight},
            {"pixelAspect", hasShape ? facts.pixelAspect : 1.0},
            {"seconds", known(facts.seconds, longestFilm)},
            {"duration", known(facts.duration, longestFilm)},
            {"frameRate", known(facts.frameRate, fastestFilm)}};
}

PreviewFacts decodePreviewFacts(const Json &content) {
    PreviewFacts facts;
    facts.width = smallInteger(field(content, "width"), 1);
    facts.height = smallInteger(field(content, "height"), 1);
    facts.hasBothEyes = boolean(field(content, "hasBothEyes"));
    facts.isFlat = boolean(field(content, "isFlat"));
    facts.eyeWidth = integer(field(content, "eyeWidth"), 0, largestInt);
    facts.eyeHeight = integer(field(content, "eyeHeight"), 0, largestInt);
    facts.pixelAspect = numberIn(field(content, "pixelAspect"), narrowestPixel, widestPixel);
    facts.seconds = numberIn(field(content, "seconds"), 0, longestFilm);
    facts.duration = numberIn(field(content, "duration"), 0, longestFilm);
    facts.frameRate = numberIn(field(content, "frameRate"), 0, fastestFilm);
    return facts;
}

} // namespace lumetwin::worker
