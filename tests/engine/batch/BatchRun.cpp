// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/engine/batch/BatchRun.h"

#include "engine/ConversionInput.h"
#include "engine/inspection/Inspection.h"
#include "engine/inspection/MediaKinds.h"
#include "engine/texts/FileNames.h"
#include "engine/texts/Texts.h"
#include "media/InputFile.h"
#include "media/OutputFile.h"

#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

namespace lumetwin::test {

BatchRun::BatchRun() {
    setTextLocale("en");
    settings->outputFolderURL = output.path();
    settings->checkStereo = false; // the sources have no pictures
}

BatchRun::~BatchRun() {
    setTextLocale("en");
}

std::filesystem::path BatchRun::file(const std::string &name) {
    writeFile(input / name, std::string("source"));
    return input / name;
}

namespace {

constexpr std::string_view content = "converted";
const std::vector<std::uint8_t> convertedFile(content.begin(), content.end());

} // namespace

Outcome BatchRun::convert(const std::string &converter, const media::InputFile &from, const media::OutputFile &to,
                          const ConversionControl &control) {
    const std::string name = from.path().filename().string();
    {
        const std::scoped_lock lock(mutex_);
        calls.push_back(converter + " " + name + " " + to.path().filename().string());
        sources.push_back(from.path());
    }
    if (!settings->recursive) {
        EXPECT_EQ(to.path().parent_path(), *settings->outputFolderURL);
    }
    const auto action = actions.find(name);
    if (action != actions.end())
        action->second(&control);
    else
        to.writeAt(0, convertedFile);
    const std::scoped_lock lock(mutex_);
    Outcome outcome = std::exchange(nextOutcome, {.warnings = {}});
    outcome.written = !control.cancelled() || std::exchange(finishesAllTheSame, false);
    return outcome;
}

MediaOperations::Converter BatchRun::converter(const char *name) {
    return [this, name](const ConversionSettings &given, const ConversionInput &from, const media::OutputFile &to,
                        const ConversionControl &control, SystemVersion) {
        EXPECT_EQ(&given, settings.get());
        {
            const std::scoped_lock lock(mutex_);
            adjustments.push_back(from.disparityAdjustment);
        }
        return convert(name, from, to, control);
    };
}

MediaOperations BatchRun::operations() {
    const auto look = [this](const media::InputFile &file) {
        MediaFacts facts;
        facts.kind = isPhotoFile(file.path()) ? MediaFacts::Kind::photo : MediaFacts::Kind::video;
        facts.isReadable = lookAt(file).isReadable;
        facts.isSpatial = spatialNames.count(file.path().filename().string()) > 0;
        return facts;
    };
    return {.look = look,
            .lookClosely = lookClosely,
            .examine = examine,
            .measure = measure,
            .convertSpatialVideoToSBS = converter("videoToSBS"),
            .convertSBSVideoToSpatial = converter("videoToSpatial"),
            .convertSpatialPhotoToSBS = converter("photoToSBS"),
            .convertSBSImageToSpatial = converter("imageToSpatial"),
            .photosAtOnce = photosAtOnce};
}

void BatchRun::addEvent(const std::string &event) {
    const std::scoped_lock lock(mutex_);
    events.push_back(event);
}

void BatchRun::run(SystemVersion system) {
    VideoProcessor batch(settings, system, operations());
    processor = &batch;
    batch.onProgress = [&](auto index, auto total, const auto &name) {
        progress.push_back({index, total, name});
        addEvent("begin " + name);
    };
    batch.onFrameProgress = [&](auto current, auto total) { frames.emplace_back(current, total); };
    batch.onSkip = [&](const auto &name, const auto &reason) { skips.push_back({name, reason}); };
    batch.onComplete = [&](bool success, const auto &message) { completions.push_back({success, message}); };
    batch.onResult = [&](const FileResult &result) {
        results.push_back(result);
        addEvent("end " + lastPathComponent(result.input));
        if (throwAtResult)
            throw std::runtime_error("a callback failed");
        const std::string name = lastPathComponent(result.input);
        if (result.wasConverted())
            converted.push_back(name + "|" + result.output.filename().string());
        if (result.state == FileState::failed)
            failures.push_back(name + "|" + result.reason);
    };
    batch.onLog = [&](const auto &line) {
        log.push_back(line);
        addEvent("log " + line);
    };
    batch.processAll();
    processor = nullptr;
}

} // namespace lumetwin::test
