// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/protocol/FactsCoding.h"

#include "worker/protocol/Reading.h"

#include <cmath>

namespace lumetwin::worker {
namespace {

using Json = nlohmann::json;

constexpr int mostPictures = 1 << 16;
constexpr std::size_t longestProjection = 4; // bytes of a four-character code

std::optional<MediaFacts::Eye> decodeEye(const Json &value) {
    return value.is_null() ? std::nullopt : std::optional(caseOf(value, MediaFacts::Eye::right));
}

std::string decodeProjection(const Json &value) {
    if (string(value).size() > longestProjection)
        throw ProtocolError("no four-character code");
    return string(value);
}

Json encodeFigures(const std::optional<DisparityFigures> &figures) {
    if (!figures)
        return nullptr;
    return {{"nearest", figures->nearest},
            {"middle", figures->middle},
            {"farthest", figures->farthest},
            {"vertical", figures->vertical}};
}

double percentage(const Json &value) {
    const double percent = number(value);
    if (std::abs(percent) > 100)
        throw ProtocolError("no percentage of the width");
    return percent;
}

std::optional<DisparityFigures> decodeFigures(const Json &content) {
    if (content.is_null())
        return std::nullopt;
    return DisparityFigures{.nearest = percentage(field(content, "nearest")),
                            .middle = percentage(field(content, "middle")),
                            .farthest = percentage(field(content, "farthest")),
                            .vertical = percentage(field(content, "vertical"))};
}

} // namespace

Json encodeValue(const std::optional<double> &value) {
    return value && std::isfinite(*value) ? Json(*value) : Json(nullptr);
}

std::optional<double> decodeValue(const Json &value) {
    return value.is_null() ? std::nullopt : std::optional(number(value));
}

Json encodeLayout(const std::optional<StereoLayout> &layout) {
    if (!layout)
        return nullptr;
    return {{"arrangement", numberOf(layout->arrangement)},
            {"isHalf", layout->isHalf},
            {"rightEyeFirst", layout->rightEyeFirst},
            {"source", numberOf(layout->source)}};
}

std::optional<StereoLayout> decodeLayout(const Json &content) {
    if (content.is_null())
        return std::nullopt;
    return StereoLayout{.arrangement = caseOf(field(content, "arrangement"), lastEyeArrangement),
                        .isHalf = boolean(field(content, "isHalf")),
                        .rightEyeFirst = boolean(field(content, "rightEyeFirst")),
                        .source = caseOf(field(content, "source"), lastLayoutSource)};
}

Json encodeFindings(const StereoFindings &findings) {
    return {{"wasExamined", findings.wasExamined},
            {"seen", findings.seen ? Json(numberOf(*findings.seen)) : Json(nullptr)},
            {"looksFlat", findings.looksFlat},
            {"isLevel", findings.isLevel},
            {"probablySwapped", findings.probablySwapped},
            {"disparity", encodeFigures(findings.disparity)},
            {"unevenness", findings.unevenness}};
}

StereoFindings decodeFindings(const Json &content) {
    const Json &seen = field(content, "seen");
    return {.wasExamined = boolean(field(content, "wasExamined")),
            .seen = seen.is_null() ? std::nullopt : std::optional(caseOf(seen, lastEyeArrangement)),
            .looksFlat = boolean(field(content, "looksFlat")),
            .isLevel = boolean(field(content, "isLevel")),
            .probablySwapped = boolean(field(content, "probablySwapped")),
            .disparity = decodeFigures(field(content, "disparity")),
            .unevenness = percentage(field(content, "unevenness"))};
}

Json encodeFacts(const MediaFacts &facts) {
    return {{"kind", numberOf(facts.kind)},
            {"isReadable", facts.isReadable},
            {"isSpatial", facts.isSpatial},
            {"horizontalFOV", encodeValue(facts.values.horizontalFOV)},
            {"stereoBaseline", encodeValue(facts.values.stereoBaseline)},
            {"disparity", encodeValue(facts.values.disparity)},
            {"layout", encodeLayout(facts.layout)},
            {"otherLayout", encodeLayout(facts.otherLayout)},
            {"furtherPictures", facts.furtherPictures},
            {"projection", facts.projection},
            {"hasLeftEye", facts.hasLeftEye},
            {"hasRightEye", facts.hasRightEye},
            {"heroEye", facts.heroEye ? Json(numberOf(*facts.heroEye)) : Json(nullptr)},
            {"isMultilayer", facts.isMultilayer}};
}

MediaFacts decodeFacts(const Json &content) {
    return {.kind = caseOf(field(content, "kind"), MediaFacts::Kind::photo),
            .isReadable = boolean(field(content, "isReadable")),
            .isSpatial = boolean(field(content, "isSpatial")),
            .values = {.horizontalFOV = decodeValue(field(content, "horizontalFOV")),
                       .stereoBaseline = decodeValue(field(content, "stereoBaseline")),
                       .disparity = decodeValue(field(content, "disparity"))},
            .layout = decodeLayout(field(content, "layout")),
            .otherLayout = decodeLayout(field(content, "otherLayout")),
            .furtherPictures = static_cast<int>(integer(field(content, "furtherPictures"), 0, mostPictures)),
            .projection = decodeProjection(field(content, "projection")),
            .hasLeftEye = boolean(field(content, "hasLeftEye")),
            .hasRightEye = boolean(field(content, "hasRightEye")),
            .heroEye = decodeEye(field(content, "heroEye")),
            .isMultilayer = boolean(field(content, "isMultilayer"))};
}

Json encodeSize(const PictureSize &size) {
    return {{"width", size.width}, {"height", size.height}};
}

PictureSize decodeSize(const Json &content) {
    return {.width = integer(field(content, "width"), 0), .height = integer(field(content, "height"), 0)};
}

} // namespace lumetwin::worker
