// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Commands.h"

#include "engine/stereo/StereoWarnings.h"
#include "engine/texts/FileNames.h"
#include "engine/texts/LayoutTexts.h"
#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"
#include "engine/texts/WarningTexts.h"
#include "tools/DisparityJson.h"
#include "tools/Json.h"

#include <cstdio>
#include <optional>
#include <string>

namespace lumetwin::batch {
namespace {

using Kind = MediaFacts::Kind;
using Eye = MediaFacts::Eye;

std::string_view eyeName(Eye eye) {
    return eye == Eye::left ? "left" : eye == Eye::right ? "right" : "none";
}

Json jsonLayout(const std::optional<StereoLayout> &layout) {
    if (!layout)
        return nullptr;
    return {{"arrangement", rawValue(layout->arrangement)},
            {"half", layout->isHalf},
            {"rightEyeFirst", layout->rightEyeFirst},
            {"source", rawValue(layout->source)}};
}

/// null when the file does not contain the value.
template <typename Value> Json orNull(const std::optional<Value> &value) {
    return value ? Json(*value) : Json(nullptr);
}

/// What the picture looks like; null when it was not examined.
Json jsonPicture(const CloseInspection &found) {
    const StereoFindings &findings = found.findings;
    if (!findings.wasExamined)
        return nullptr;
    Json warnings = Json::array();
    for (const Warning &warning : stereoWarnings(findings, found.layout))
        warnings.push_back(rawValue(warning.kind));
    return {{"seen", findings.seen ? Json(rawValue(*findings.seen)) : Json(nullptr)},
            {"flat", findings.looksFlat},
            {"level", findings.isLevel},
            {"probablySwapped", findings.probablySwapped},
            {"disparity", disparityJson(findings.disparity)},
            {"warnings", std::move(warnings)}};
}

Json jsonObject(const std::filesystem::path &file, const CloseInspection &found) {
    const MediaFacts &facts = found.facts;
    const bool isVideo = facts.kind == Kind::video;
    Json object{{"file", file.string()},
                {"kind", isVideo ? "video" : "photo"},
                {"spatial", facts.isSpatial},
                {"horizontalFOV", orNull(facts.values.horizontalFOV)},
                {"stereoBaseline", orNull(facts.values.stereoBaseline)},
                {"disparityAdjustment", orNull(facts.values.disparity)},
                {"layout", jsonLayout(facts.layout)},
                {"otherLayout", jsonLayout(facts.otherLayout)},
                {"projection", facts.projection.empty() ? Json(nullptr) : Json(facts.projection)},
                {"picture", jsonPicture(found)}};
    if (isVideo) {
        object["leftEye"] = facts.hasLeftEye;
        object["rightEye"] = facts.hasRightEye;
        object["heroEye"] = facts.heroEye ? Json(eyeName(*facts.heroEye)) : Json(nullptr);
        object["multilayer"] = facts.isMultilayer;
    }
    return object;
}

Json jsonObject(const std::filesystem::path &file, const std::string &readError) {
    return {{"file", file.string()}, {"error", readError}};
}

std::string kindText(const MediaFacts &facts) {
    if (!facts.isSpatial)
        return text("batch.inspect.not.spatial");
    return text(facts.kind == Kind::photo ? "batch.inspect.spatial.photo" : "batch.inspect.spatial.video");
}

std::string eyeNames(const MediaFacts &facts) {
    std::string names;
    if (facts.hasLeftEye)
        names = text("batch.inspect.eye.left");
    if (facts.hasRightEye)
        names += (names.empty() ? "" : ", ") + text("batch.inspect.eye.right");
    return names;
}

std::string heroEyeText(Eye eye) {
    if (eye == Eye::none)
        return text("batch.inspect.eye.none");
    return text(eye == Eye::left ? "batch.inspect.eye.left" : "batch.inspect.eye.right");
}

void printText(Console &console, const std::filesystem::path &file, const CloseInspection &found) {
    const MediaFacts &facts = found.facts;
    console.print(file.string() + ": " + kindText(facts));
    const auto printIndented = [&](const std::string &line) { console.print("  " + line); };
    for (const std::optional<StereoLayout> &layout : {facts.layout, facts.otherLayout})
        if (layout)
            printIndented(formatted("batch.inspect.layout.format", layoutWords(*layout).shown,
                                    sourceWords(layout->source).shown));
    if (facts.values.horizontalFOV)
        printIndented(formatted("batch.inspect.fov.format", *facts.values.horizontalFOV));
    if (facts.values.stereoBaseline)
        printIndented(formatted("batch.inspect.baseline.format", *facts.values.stereoBaseline));
    if (facts.values.disparity)
        printIndented(formatted("batch.inspect.disparity.format", *facts.values.disparity));
    if (const std::string names = eyeNames(facts); !names.empty())
        printIndented(formatted("batch.inspect.eyes.format", names));
    if (facts.heroEye)
        printIndented(formatted("batch.inspect.hero.format", heroEyeText(*facts.heroEye)));
    if (!facts.projection.empty())
        printIndented(formatted("batch.inspect.projection.format", facts.projection));
    if (const auto &disparity = found.findings.disparity)
        printIndented(formatted("batch.inspect.parallax.format", disparity->nearest, disparity->middle,
                                disparity->farthest, disparity->vertical));
    for (const Warning &warning : stereoWarnings(found.findings, found.layout))
        printIndented(formatted("batch.warning.format", warningText(warning)));
}

} // namespace

int inspectCommand(const BatchOptions &options, Console &console, const MediaOperations &operations) {
    int status = allSucceeded;
    Json objects = Json::array();
    for (const std::filesystem::path &file : options.inputs) {
        try {
            const CloseInspection found = operations.inspectClosely(file);
            options.json ? objects.push_back(jsonObject(file, found)) : printText(console, file, found);
        } catch (const std::exception &error) {
            const std::string cause = errorCause(error);
            status = someFailed;
            console.printError("lumetwin-batch: " + file.string() + ": " + cause);
            if (options.json)
                objects.push_back(jsonObject(file, cause));
        }
    }
    if (options.json)
        std::fputs(jsonText(objects).c_str(), stdout);
    return status;
}

} // namespace lumetwin::batch
