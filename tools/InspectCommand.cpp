// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Commands.h"

#include "engine/batch/FileNames.h"
#include "engine/inspection/MediaDescription.h"
#include "engine/texts/Texts.h"
#include "tools/Json.h"

#include <cerrno>
#include <fstream>
#include <optional>
#include <system_error>

namespace lumetwin::batch {
namespace {

using Kind = MediaDescription::Kind;
using Eye = MediaDescription::Eye;

/// Why a file cannot be read at all; empty when it can.
std::string obstacle(const std::filesystem::path &file) {
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (!std::filesystem::exists(status))
        return std::make_error_code(std::errc::no_such_file_or_directory).message();
    if (std::filesystem::is_directory(status))
        return std::make_error_code(std::errc::is_a_directory).message();
    if (!std::filesystem::is_regular_file(status))
        return "Not a regular file"; // nobody may ever write to a pipe
    errno = 0;
    if (!std::ifstream(file, std::ios::binary))
        return std::generic_category().message(errno != 0 ? errno : EIO);
    return {};
}

std::string_view eyeName(Eye eye) {
    return eye == Eye::left ? "left" : eye == Eye::right ? "right" : "none";
}

/// null where the file does not carry the value.
template <typename Value> Json orNull(const std::optional<Value> &value) {
    return value ? Json(*value) : Json(nullptr);
}

Json objectOf(const std::filesystem::path &file, const MediaDescription &description) {
    const bool isVideo = description.kind == Kind::video;
    Json object{{"file", file.string()},
                {"kind", isVideo ? "video" : "photo"},
                {"spatial", description.isSpatial},
                {"horizontalFOV", orNull(description.values.horizontalFOV)},
                {"stereoBaseline", orNull(description.values.stereoBaseline)},
                {"disparityAdjustment", orNull(description.values.disparity)}};
    if (isVideo) {
        object["leftEye"] = description.hasLeftEye;
        object["rightEye"] = description.hasRightEye;
        object["heroEye"] = description.heroEye ? Json(eyeName(*description.heroEye)) : Json(nullptr);
        object["projection"] = description.projection.empty() ? Json(nullptr) : Json(description.projection);
        object["multilayer"] = description.isMultilayer;
    }
    return object;
}

Json objectOf(const std::filesystem::path &file, const std::string &obstacle) {
    return {{"file", file.string()}, {"error", obstacle}};
}

std::string headline(const MediaDescription &description) {
    if (!description.isSpatial)
        return text("batch.inspect.not.spatial");
    return text(description.kind == Kind::photo ? "batch.inspect.spatial.photo" : "batch.inspect.spatial.video");
}

std::string eyes(const MediaDescription &description) {
    std::string names;
    if (description.hasLeftEye)
        names = text("batch.inspect.eye.left");
    if (description.hasRightEye)
        names += (names.empty() ? "" : ", ") + text("batch.inspect.eye.right");
    return names;
}

std::string heroEye(Eye eye) {
    if (eye == Eye::none)
        return text("batch.inspect.eye.none");
    return text(eye == Eye::left ? "batch.inspect.eye.left" : "batch.inspect.eye.right");
}

void printWords(Console &console, const std::filesystem::path &file, const MediaDescription &description) {
    console.print(file.string() + ": " + headline(description));
    const auto tell = [&](const std::string &words) { console.print("  " + words); };
    if (description.values.horizontalFOV)
        tell(formatted("batch.inspect.fov.format", *description.values.horizontalFOV));
    if (description.values.stereoBaseline)
        tell(formatted("batch.inspect.baseline.format", *description.values.stereoBaseline));
    if (description.values.disparity)
        tell(formatted("batch.inspect.disparity.format", *description.values.disparity));
    if (const std::string names = eyes(description); !names.empty())
        tell(formatted("batch.inspect.eyes.format", names));
    if (description.heroEye)
        tell(formatted("batch.inspect.hero.format", heroEye(*description.heroEye)));
    if (!description.projection.empty())
        tell(formatted("batch.inspect.projection.format", description.projection));
}

} // namespace

int inspectCommand(const BatchOptions &options, Console &console) {
    int status = allWell;
    Json objects = Json::array();
    for (const std::filesystem::path &file : options.inputs) {
        const std::string reason = obstacle(file);
        if (!reason.empty()) {
            status = someFailed;
            console.printError("lumetwin-batch: " + file.string() + ": " + reason);
        }
        if (options.json)
            objects.push_back(reason.empty() ? objectOf(file, describeMedia(file)) : objectOf(file, reason));
        else if (reason.empty())
            printWords(console, file, describeMedia(file));
    }
    if (options.json)
        std::fputs(jsonText(objects).c_str(), stdout);
    return status;
}

} // namespace lumetwin::batch
