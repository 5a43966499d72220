// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/RunDocument.h"

#include "engine/inspection/MediaKinds.h"
#include "engine/texts/WarningTexts.h"
#include "tools/CaseNames.h"
#include "tools/DisparityJson.h"
#include "tools/Json.h"
#include "tools/RunTotals.h"

#include <fmt/chrono.h>

#include <system_error>

namespace lumetwin::batch {
namespace {

/// Must be raised when a change would break programs that read the old format. New members do not need that.
constexpr int formatVersion = 1;

std::string timeText(std::chrono::system_clock::time_point moment) {
    return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(std::chrono::system_clock::to_time_t(moment)));
}

Json absolutePath(const std::filesystem::path &file) {
    if (file.empty())
        return nullptr;
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(file, error);
    return (error ? file : absolute).string();
}

Json settingsJson(const ConversionSettings &settings) {
    return {{"horizontalFOV", settings.horizontalFOV},
            {"disparityAdjustment", settings.disparityAdjustment},
            {"stereoBaseline", settings.stereoBaseline},
            {"automaticDisparity", settings.automaticDisparity},
            {"stereoValues", caseName(settings.stereoValuesSource, stereoValuesNames)},
            {"inputLayout", caseName(settings.inputLayout, inputLayoutNames)},
            {"checkStereo", settings.checkStereo},
            {"sbsOutputFormat", caseName(settings.sbsOutputFormat, videoFormatNames)},
            {"sbsPhotoOutputFormat", caseName(settings.sbsPhotoOutputFormat, photoFormatNames)},
            {"compressionQuality", settings.compressionQuality},
            {"halfWidth", settings.halfWidth},
            {"swapLeftRight", settings.swapLeftRight},
            {"enableResize", settings.enableResize},
            {"resizeWidth", settings.resizeWidth},
            {"resizeHeight", settings.resizeHeight},
            {"resizeMode", caseName(settings.resizeMode, resizeModeNames)},
            {"copyAudio", settings.copyAudio},
            {"keepTiming", settings.keepTiming},
            {"bitDepth", caseName(settings.bitDepth, bitDepthNames)},
            {"dryRun", settings.dryRun},
            {"recursive", settings.recursive},
            {"skipExisting", settings.skipExisting},
            {"onExisting", caseName(settings.onExisting, onExistingNames)}};
}

Json totalsOf(const RunTotals &totals, std::size_t files) {
    return {{"files", files},
            {"converted", totals.converted},
            {"wouldBeConverted", totals.wouldBeConverted},
            {"convertedWithWarnings", totals.withWarnings},
            {"skipped", totals.skipped},
            {"upToDate", totals.upToDate},
            {"failed", totals.failed},
            {"cancelled", totals.cancelled},
            {"notReached", totals.notReached}};
}

Json warningJson(const Warning &warning) {
    Json values = Json::array();
    for (const Warning::Value &value : warning.values)
        std::visit([&](const auto &number) { values.push_back(number); }, value);
    return {{"kind", rawValue(warning.kind)},
            {"note", isNote(warning.kind)},
            {"values", std::move(values)},
            {"text", warningText(warning)}};
}

/// The frame counts of a video; null for a photo and for a video that was not started.
Json framesJson(const FileResult &result) {
    const bool wasBegun = result.wasConverted() || result.state == FileState::cancelled;
    if (!wasBegun || !isVideoFile(result.input))
        return nullptr;
    return {{"written", result.framesWritten},
            {"expected", result.framesExpected > 0 ? Json(result.framesExpected) : Json(nullptr)}};
}

Json fileJson(const FileResult &result) {
    Json warnings = Json::array();
    for (const Warning &warning : result.warnings)
        warnings.push_back(warningJson(warning));
    return {{"input", absolutePath(result.input)},
            {"rightEye", absolutePath(result.rightEye)},
            {"output", absolutePath(result.output)},
            {"state", rawValue(result.state)},
            {"reason", result.reason.empty() ? Json(nullptr) : Json(result.reason)},
            {"warnings", std::move(warnings)},
            {"disparity", disparityJson(result.disparity)},
            {"frames", framesJson(result)},
            {"seconds", result.seconds},
            {"bytes", result.wasConverted() ? Json(result.bytes) : Json(nullptr)}};
}

} // namespace

std::string runDocument(const RunFacts &facts) {
    Json files = Json::array();
    for (const FileResult &result : facts.results)
        files.push_back(fileJson(result));
    return jsonText({{"formatVersion", formatVersion},
                     {"program", "lumetwin-batch"},
                     {"programVersion", LUMETWIN_VERSION},
                     {"started", timeText(facts.started)},
                     {"finished", timeText(facts.finished)},
                     {"stopped", facts.stopped},
                     {"exitStatus", facts.exitStatus},
                     {"message", facts.message},
                     {"direction", caseName(facts.settings.direction, directionNames)},
                     {"outputFolder", absolutePath(facts.settings.outputFolderURL.value_or(""))},
                     {"settings", settingsJson(facts.settings)},
                     {"totals", totalsOf(batch::totalsOf(facts.results), facts.results.size())},
                     {"files", std::move(files)}});
}

} // namespace lumetwin::batch
