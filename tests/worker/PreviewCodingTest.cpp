// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/worker/SentContent.h"
#include "worker/protocol/Answer.h"
#include "worker/protocol/Channel.h"
#include "worker/protocol/ProtocolError.h"
#include "worker/protocol/Request.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace lumetwin::worker {
namespace {

DrawRequest unusualRequest() {
    return {.preview = {.layout = {EyeArrangement::overUnder, true, true, LayoutSource::stream},
                        .position = 0.25,
                        .detail = PreviewDetail::exact,
                        .maximumWidth = 1280,
                        .maximumHeight = 720},
            .input = "/in/a.mov",
            .language = "ja",
            .rightEye = "/in/b.mov"};
}

PreviewFacts unusualFacts() {
    PreviewFacts facts;
    facts.width = 1280;
    facts.height = 719;
    facts.hasBothEyes = true;
    facts.isFlat = true;
    facts.eyeWidth = 4000;
    facts.eyeHeight = 3000;
    facts.pixelAspect = 1.25;
    facts.seconds = 3.5;
    facts.duration = 12.75;
    facts.frameRate = 29.97;
    return facts;
}

PreviewFacts arrived(const PreviewFacts &facts) {
    return std::get<PreviewFacts>(decodeAnswer(sentContent(encode(Answer(facts)))));
}

/// Everything in an object is needed, and of its own type.
template <typename Decode>
void expectAllNeeded(const nlohmann::json &content, const nlohmann::json::json_pointer &object, const Decode &decode) {
    for (const auto &[name, value] : content[object].items()) {
        nlohmann::json wrong = content;
        wrong[object][name] = "text";
        EXPECT_THROW(decode(wrong), ProtocolError) << name;
        wrong[object].erase(name);
        EXPECT_THROW(decode(wrong), ProtocolError) << name;
    }
}

TEST(PreviewCoding, RequestsArriveWhole) {
    const DrawRequest request = unusualRequest();
    const auto found = std::get<DrawRequest>(decodeRequest(sentContent(encode(request))));
    EXPECT_EQ(found.preview.layout, request.preview.layout);
    EXPECT_EQ(found.preview.position, 0.25);
    EXPECT_EQ(found.preview.detail, PreviewDetail::exact);
    EXPECT_EQ(found.preview.maximumWidth, 1280);
    EXPECT_EQ(found.preview.maximumHeight, 720);
    EXPECT_EQ(found.input, request.input);
    EXPECT_EQ(found.language, "ja");
    EXPECT_EQ(found.rightEye, request.rightEye);
    expectAllNeeded(encode(request), nlohmann::json::json_pointer("/preview"), decodeRequest);
}

TEST(PreviewCoding, FactsArriveWhole) {
    const PreviewFacts facts = unusualFacts();
    const PreviewFacts found = arrived(facts);
    EXPECT_EQ(found.width, facts.width);
    EXPECT_EQ(found.height, facts.height);
    EXPECT_EQ(found.hasBothEyes, facts.hasBothEyes);
    EXPECT_EQ(found.isFlat, facts.isFlat);
    EXPECT_EQ(found.eyeWidth, facts.eyeWidth);
    EXPECT_EQ(found.eyeHeight, facts.eyeHeight);
    EXPECT_EQ(found.pixelAspect, facts.pixelAspect);
    EXPECT_EQ(found.seconds, facts.seconds);
    EXPECT_EQ(found.duration, facts.duration);
    EXPECT_EQ(found.frameRate, facts.frameRate);
    expectAllNeeded(encode(Answer(facts)), nlohmann::json::json_pointer("/preview"), decodeAnswer);
}

TEST(PreviewCoding, FactsThatCannotBeAreRefused) {
    const auto refuses = [](const char *name, const nlohmann::json &value) {
        nlohmann::json content = encode(Answer(unusualFacts()));
        content["preview"][name] = value;
        EXPECT_THROW(decodeAnswer(sentContent(content)), ProtocolError) << name << " " << value;
    };
    for (const char *side : {"width", "height"})
        for (const std::int64_t value : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{1} << 40})
            refuses(side, value);
    for (const char *side : {"eyeWidth", "eyeHeight"})
        for (const std::int64_t value : {std::int64_t{-1}, std::int64_t{1} << 40})
            refuses(side, value);
    for (const char *time : {"seconds", "duration", "frameRate"})
        for (const double value : {-0.5, 1e300, std::numeric_limits<double>::infinity(), std::nan("")})
            refuses(time, value);
    for (const double value : {0.0, -1.0, 100.0})
        refuses("pixelAspect", value);
}

TEST(PreviewCoding, NumbersOfDamagedFilesAreUnknown) {
    PreviewFacts facts = unusualFacts();
    facts.seconds = std::nan("");
    facts.duration = std::numeric_limits<double>::infinity();
    facts.frameRate = -1;
    facts.pixelAspect = 0;
    const PreviewFacts found = arrived(facts);
    EXPECT_EQ(found.seconds, 0);
    EXPECT_EQ(found.duration, 0);
    EXPECT_EQ(found.frameRate, 0);
    EXPECT_EQ(found.pixelAspect, 1);
}

TEST(PreviewCoding, RequestsThatCannotBeAreRefused) {
    for (const double position : {-0.1, 1.1, std::nan("")}) {
        DrawRequest request = unusualRequest();
        request.preview.position = position;
        EXPECT_THROW(decodeRequest(sentContent(encode(request))), ProtocolError) << position;
    }
}

} // namespace
} // namespace lumetwin::worker
