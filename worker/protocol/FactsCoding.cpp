// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/protocol/FactsCoding.h"

#include "worker/protocol/Reading.h"

#include <cmath>

namespace lumetwin::worker {
namespace {

using Json = nlohmann::json;

constexpr int mostPictures = 1 << 16;
constexpr std::size_t longestProjection = 4; // bytes of a four-character code

Json encodeValue(const std::optional<double> &value) {
    return value && std::isfinite(*value) ? Json(*value) : Json(nullptr);
}

std::optional<double> decodeValue(const Json &value) {
    return value.is_null() ? std::nullopt : std::optional(number(value));
}

std::optional<MediaFacts::Eye> decodeEye(const Json &value) {
    return value.is_null() ? std::nullopt : std::optional(caseOf(value, MediaFacts::Eye::right));
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

std::string decodeProjection(const Json &value) {
    if (string(value).size() > longestProjection)
        throw ProtocolError("no four-character code");
    return string(value);
}

} // namespace

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
