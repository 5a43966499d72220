// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/engine/batch/BatchRun.h"

#include "engine/texts/FileNames.h"
#include "engine/texts/Texts.h"

#include <utility>

namespace lumetwin::test {

BatchRun::BatchRun() {
    setTextLocale("en");
    settings->outputFolderURL = output.path();
}

BatchRun::~BatchRun() {
    setTextLocale("en");
}

std::filesystem::path BatchRun::file(const std::string &name) {
    writeFile(input / name, std::string("source"));
    return input / name;
}

Outcome BatchRun::convert(const std::string &converter, const std::filesystem::path &from,
                          const std::filesystem::path &to, const ConversionControl *control) {
    calls.push_back(converter + " " + from.filename().string() + " " + to.filename().string());
    sources.push_back(from);
    if (!settings->recursive) {
        EXPECT_EQ(to.parent_path(), *settings->outputFolderURL);
    }
    const auto action = actions.find(from.filename().string());
    if (action != actions.end())
        action->second(control);
    else
        writeFile(to, std::string("converted"));
    Outcome outcome = std::exchange(nextOutcome, {.warnings = {}});
    outcome.written = !control->cancelled() || std::exchange(finishesAllTheSame, false);
    return outcome;
}

MediaOperations BatchRun::operations() {
    const auto isSpatial = [this](const std::filesystem::path &file) {
        return spatialNames.count(file.filename().string()) > 0;
    };
    const auto video = [this](const char *name) {
        return [this, name](const ConversionSettings &given, const auto &from, const auto &to,
                            const ConversionControl &control, SystemVersion) {
            EXPECT_EQ(&given, settings.get());
            return convert(name, from, to, &control);
        };
    };
    const auto photo = [this](const char *name) {
        return [this, name](const ConversionSettings &given, const auto &from, const auto &to,
                            const ConversionControl &control) {
            EXPECT_EQ(&given, settings.get());
            return convert(name, from, to, &control);
        };
    };
    return {.isSpatialVideo = [isSpatial](const auto &file, SystemVersion) { return isSpatial(file); },
            .isSpatialPhoto = isSpatial,
            .convertSpatialVideoToSBS = video("videoToSBS"),
            .convertSBSVideoToSpatial = video("videoToSpatial"),
            .convertSpatialPhotoToSBS = photo("photoToSBS"),
            .convertSBSImageToSpatial = photo("imageToSpatial")};
}

void BatchRun::run(SystemVersion system) {
    VideoProcessor batch(settings, system, operations());
    processor = &batch;
    batch.onProgress = [&](auto index, auto total, const auto &name) { progress.push_back({index, total, name}); };
    batch.onFrameProgress = [&](auto current, auto total) { frames.emplace_back(current, total); };
    batch.onSkip = [&](const auto &name, const auto &reason) { skips.push_back({name, reason}); };
    batch.onComplete = [&](bool success, const auto &message) { completions.push_back({success, message}); };
    batch.onResult = [&](const FileResult &result) {
        results.push_back(result);
        const std::string name = lastPathComponent(result.input);
        if (result.wasConverted())
            converted.push_back(name + "|" + result.output.filename().string());
        if (result.state == FileState::failed)
            failures.push_back(name + "|" + result.reason);
    };
    batch.onLog = [&](const auto &line) { log.push_back(line); };
    batch.processAll();
    processor = nullptr;
}

} // namespace lumetwin::test
