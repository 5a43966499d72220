// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/worker/SentContent.h"
#include "worker/protocol/Answer.h"
#include "worker/protocol/Channel.h"
#include "worker/protocol/ProtocolError.h"
#include "worker/protocol/Request.h"
#include "worker/protocol/SettingsCoding.h"

#include <cmath>
#include <gtest/gtest.h>

namespace lumetwin::worker {
namespace {

std::shared_ptr<ConversionSettings> unusualSettings() {
    auto settings = std::make_shared<ConversionSettings>();
    settings->direction = ConversionDirection::sbsToSpatial;
    settings->horizontalFOV = 71.8;
    settings->disparityAdjustment = -3;
    settings->stereoBaseline = 63;
    settings->sbsOutputFormat = SBSOutputFormat::movHEVC;
    settings->sbsPhotoOutputFormat = allSBSPhotoOutputFormats.back();
    settings->compressionQuality = 0.1;
    settings->halfWidth = settings->swapLeftRight = settings->enableResize = settings->keepTiming = true;
    settings->automaticDisparity = true;
    settings->stereoValuesSource = StereoValuesSource::file;
    settings->inputLayout = InputLayout::twoFiles;
    settings->checkStereo = false;
    settings->resizeWidth = 640;
    settings->resizeHeight = 480;
    settings->resizeMode = ResizeMode::stretch;
    settings->copyAudio = false;
    settings->bitDepth = BitDepth::ten;
    return settings;
}

TEST(Coding, SettingsArriveWhole) {
    const auto settings = unusualSettings();
    const nlohmann::json content = encodeSettings(*settings);
    EXPECT_EQ(encodeSettings(*decodeSettings(sentContent(content))), content);
    EXPECT_NE(content, encodeSettings(ConversionSettings()));
    for (const auto &[name, value] : content.items())
        EXPECT_NE(value, encodeSettings(ConversionSettings())[name]) << name << " is not tested";
}

TEST(Coding, EverySettingIsNeeded) {
    const nlohmann::json content = encodeSettings(*unusualSettings());
    for (const auto &[name, value] : content.items()) {
        nlohmann::json without = content;
        without.erase(name);
        EXPECT_THROW(decodeSettings(without), ProtocolError) << name;
        nlohmann::json wrong = content;
        wrong[name] = "text";
        EXPECT_THROW(decodeSettings(wrong), ProtocolError) << name;
    }
    nlohmann::json beyond = content;
    beyond["resizeMode"] = 3;
    EXPECT_THROW(decodeSettings(beyond), ProtocolError);
}

TEST(Coding, RequestsArriveWhole) {
    const ConvertRequest request{.kind = ConversionKind::spatialPhotoToSBS,
                                 .settings = unusualSettings(),
                                 .system = SystemVersion::current(),
                                 .input = "/in/a.heic",
                                 .output = "/out/a.jpg",
                                 .language = "ja",
                                 .oneDecodingThread = true,
                                 .disparityAdjustment = -1.5};
    const auto arrived = std::get<ConvertRequest>(decodeRequest(sentContent(encode(request))));
    EXPECT_EQ(arrived.kind, request.kind);
    EXPECT_EQ(encodeSettings(*arrived.settings), encodeSettings(*request.settings));
    EXPECT_EQ(arrived.system, request.system);
    EXPECT_EQ(arrived.input, request.input);
    EXPECT_EQ(arrived.output, request.output);
    EXPECT_EQ(arrived.language, "ja");
    EXPECT_TRUE(arrived.oneDecodingThread);
    EXPECT_EQ(arrived.disparityAdjustment, -1.5);
    EXPECT_EQ(std::get<LookRequest>(
                  decodeRequest(sentContent(encode(LookRequest{LookRequest::Kind::measure, "/in/a.heic", "en"}))))
                  .input,
              "/in/a.heic");
    EXPECT_TRUE(std::holds_alternative<CancelRequest>(decodeRequest(sentContent(encode(CancelRequest{})))));
    EXPECT_TRUE(std::holds_alternative<ForkRequest>(decodeRequest(sentContent(encode(ForkRequest{})))));
}

TEST(Coding, FactsArriveWhole) {
    const MediaFacts facts{.kind = MediaFacts::Kind::photo,
                           .isReadable = true,
                           .isSpatial = true,
                           .values = {.horizontalFOV = 63.5, .stereoBaseline = std::nullopt, .disparity = -2},
                           .layout = StereoLayout{EyeArrangement::overUnder, true, true, LayoutSource::container},
                           .otherLayout = StereoLayout{EyeArrangement::secondUnread, false, false, LayoutSource::user},
                           .furtherPictures = 3,
                           .projection = "rect",
                           .hasLeftEye = true,
                           .hasRightEye = false,
                           .heroEye = MediaFacts::Eye::right,
                           .isMultilayer = true};
    EXPECT_EQ(std::get<MediaFacts>(decodeAnswer(sentContent(encode(Answer(facts))))), facts);
    EXPECT_EQ(std::get<MediaFacts>(decodeAnswer(sentContent(encode(Answer(MediaFacts()))))), MediaFacts());
    EXPECT_EQ(std::get<PictureSize>(decodeAnswer(sentContent(encode(Answer(PictureSize{7680, 2160}))))),
              (PictureSize{7680, 2160}));
}

StereoFindings unusualFindings() {
    return {.wasExamined = true,
            .seen = EyeArrangement::twoFiles,
            .looksFlat = true,
            .isLevel = false,
            .probablySwapped = true,
            .disparity = DisparityFigures{.nearest = -3, .middle = 0.5, .farthest = 2.25, .vertical = -0.125},
            .unevenness = 0.75};
}

TEST(Coding, FindingsArriveWhole) {
    for (const StereoFindings &findings : {unusualFindings(), StereoFindings()})
        EXPECT_EQ(std::get<StereoFindings>(decodeAnswer(sentContent(encode(Answer(findings))))), findings);
}

TEST(Coding, EveryFindingIsNeeded) {
    const nlohmann::json content = encode(Answer(unusualFindings()));
    const auto expectRefused = [&](const nlohmann::json::json_pointer &place) {
        nlohmann::json wrong = content;
        wrong[place] = "text";
        EXPECT_THROW(decodeAnswer(wrong), ProtocolError) << place;
        wrong[place.parent_pointer()].erase(place.back());
        EXPECT_THROW(decodeAnswer(wrong), ProtocolError) << place;
    };
    using Place = nlohmann::json::json_pointer;
    for (const auto &[name, value] : content["findings"].items())
        expectRefused(Place("/findings") / name);
    for (const auto &[name, value] : content["findings"]["disparity"].items())
        expectRefused(Place("/findings/disparity") / name);
}

TEST(Coding, FindingsThatCannotBeAreRefused) {
    nlohmann::json content = encode(Answer(unusualFindings()));
    content["findings"]["disparity"]["farthest"] = 100.5;
    EXPECT_THROW(decodeAnswer(content), ProtocolError);
    content = encode(Answer(unusualFindings()));
    content["findings"]["seen"] = 99;
    EXPECT_THROW(decodeAnswer(content), ProtocolError);
}

TEST(Coding, RequestsToExamineHaveALayout) {
    const StereoLayout layout{EyeArrangement::overUnder, true, true, LayoutSource::stream};
    const LookRequest request{
        .kind = LookRequest::Kind::examine, .input = "/in/a.jpg", .language = "ja", .layout = layout};
    const auto arrived = std::get<LookRequest>(decodeRequest(sentContent(encode(request))));
    EXPECT_EQ(arrived.kind, LookRequest::Kind::examine);
    EXPECT_EQ(arrived.layout, layout);
    nlohmann::json without = encode(request);
    without["layout"] = nullptr;
    EXPECT_THROW(decodeRequest(without), ProtocolError);
    without["kind"] = static_cast<int>(LookRequest::Kind::look);
    EXPECT_NO_THROW(decodeRequest(without));
}

TEST(Coding, NumbersThatAreNoneAreAbsent) {
    MediaFacts facts;
    facts.values.horizontalFOV = std::nan("");
    facts.values.disparity = HUGE_VAL;
    EXPECT_EQ(std::get<MediaFacts>(decodeAnswer(sentContent(encode(Answer(facts))))), MediaFacts());
}

TEST(Coding, WarningsArriveWhole) {
    const Outcome outcome{.written = true,
                          .framesWritten = 10,
                          .framesExpected = 12,
                          .warnings = {{WarningKind::speedChanged, {0.1}},
                                       {WarningKind::framesMissing, {std::int64_t{10}, std::int64_t{12}}},
                                       {WarningKind::withoutSound, {std::string("why")}},
                                       {WarningKind::gainMapLeft, {}}}};
    const auto arrived = std::get<Outcome>(decodeAnswer(sentContent(encode(Answer(outcome)))));
    EXPECT_TRUE(arrived.written);
    EXPECT_EQ(arrived.framesWritten, 10);
    EXPECT_EQ(arrived.framesExpected, 12);
    EXPECT_EQ(arrived.warnings, outcome.warnings);
}

TEST(Coding, WarningWithOtherValuesIsRefused) {
    for (const Warning &warning :
         {Warning{WarningKind::speedChanged, {}}, Warning{WarningKind::speedChanged, {std::int64_t{1}}},
          Warning{WarningKind::gainMapLeft, {0.5}}, Warning{WarningKind::withoutSound, {0.5}},
          Warning{static_cast<WarningKind>(99), {}}})
        EXPECT_THROW(decodeAnswer(sentContent(encode(Answer(Outcome{true, 0, 0, {warning}})))), ProtocolError);
}

TEST(Coding, NumbersBelowZeroAreRefused) {
    EXPECT_THROW(decodeAnswer(sentContent(encode(Answer(Progress{-1, 0})))), ProtocolError);
    EXPECT_THROW(decodeAnswer(sentContent(encode(Answer(Outcome{true, -1, 0, {}})))), ProtocolError);
    EXPECT_THROW(decodeAnswer({{"answer", "progress"}, {"frame", ~std::uint64_t{0}}, {"frames", 0}}), ProtocolError);
    EXPECT_THROW(decodeAnswer({{"answer", "progress"}, {"frame", 1.0}, {"frames", 0}}), ProtocolError);
}

TEST(Coding, WhatIsUnknownIsRefused) {
    EXPECT_THROW(decodeAnswer({{"answer", "more"}}), ProtocolError);
    EXPECT_THROW(decodeAnswer({{"answer", 1}}), ProtocolError);
    EXPECT_THROW(decodeAnswer(nlohmann::json::object()), ProtocolError);
    EXPECT_THROW(decodeRequest({{"request", "more"}}), ProtocolError);
}

} // namespace
} // namespace lumetwin::worker
