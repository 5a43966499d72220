// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Commands.h"

#include "engine/texts/FileNames.h"
#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"
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

/// null where the file does not carry the value.
template <typename Value> Json orNull(const std::optional<Value> &value) {
    return value ? Json(*value) : Json(nullptr);
}

Json objectOf(const std::filesystem::path &file, const MediaFacts &facts) {
    const bool isVideo = facts.kind == Kind::video;
    Json object{{"file", file.string()},
                {"kind", isVideo ? "video" : "photo"},
                {"spatial", facts.isSpatial},
                {"horizontalFOV", orNull(facts.values.horizontalFOV)},
                {"stereoBaseline", orNull(facts.values.stereoBaseline)},
                {"disparityAdjustment", orNull(facts.values.disparity)}};
    if (isVideo) {
        object["leftEye"] = facts.hasLeftEye;
        object["rightEye"] = facts.hasRightEye;
        object["heroEye"] = facts.heroEye ? Json(eyeName(*facts.heroEye)) : Json(nullptr);
        object["projection"] = facts.projection.empty() ? Json(nullptr) : Json(facts.projection);
        object["multilayer"] = facts.isMultilayer;
    }
    return object;
}

Json objectOf(const std::filesystem::path &file, const std::string &obstacle) {
    return {{"file", file.string()}, {"error", obstacle}};
}

std::string headline(const MediaFacts &facts) {
    if (!facts.isSpatial)
        return text("batch.inspect.not.spatial");
    return text(facts.kind == Kind::photo ? "batch.inspect.spatial.photo" : "batch.inspect.spatial.video");
}

std::string eyes(const MediaFacts &facts) {
    std::string names;
    if (facts.hasLeftEye)
        names = text("batch.inspect.eye.left");
    if (facts.hasRightEye)
        names += (names.empty() ? "" : ", ") + text("batch.inspect.eye.right");
    return names;
}

std::string heroEye(Eye eye) {
    if (eye == Eye::none)
        return text("batch.inspect.eye.none");
    return text(eye == Eye::left ? "batch.inspect.eye.left" : "batch.inspect.eye.right");
}

void printWords(Console &console, const std::filesystem::path &file, const MediaFacts &facts) {
    console.print(file.string() + ": " + headline(facts));
    const auto tell = [&](const std::string &words) { console.print("  " + words); };
    if (facts.values.horizontalFOV)
        tell(formatted("batch.inspect.fov.format", *facts.values.horizontalFOV));
    if (facts.values.stereoBaseline)
        tell(formatted("batch.inspect.baseline.format", *facts.values.stereoBaseline));
    if (facts.values.disparity)
        tell(formatted("batch.inspect.disparity.format", *facts.values.disparity));
    if (const std::string names = eyes(facts); !names.empty())
        tell(formatted("batch.inspect.eyes.format", names));
    if (facts.heroEye)
        tell(formatted("batch.inspect.hero.format", heroEye(*facts.heroEye)));
    if (!facts.projection.empty())
        tell(formatted("batch.inspect.projection.format", facts.projection));
}

} // namespace

int inspectCommand(const BatchOptions &options, Console &console, const MediaOperations &operations) {
    int status = allWell;
    Json objects = Json::array();
    for (const std::filesystem::path &file : options.inputs) {
        try {
            const MediaFacts facts = operations.lookAtFile(file);
            options.json ? objects.push_back(objectOf(file, facts)) : printWords(console, file, facts);
        } catch (const std::exception &error) {
            const std::string cause = errorCause(error);
            status = someFailed;
            console.printError("lumetwin-batch: " + file.string() + ": " + cause);
            if (options.json)
                objects.push_back(objectOf(file, cause));
        }
    }
    if (options.json)
        std::fputs(jsonText(objects).c_str(), stdout);
    return status;
}

} // namespace lumetwin::batch
