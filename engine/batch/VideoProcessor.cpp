// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/VideoProcessor.h"

#include "engine/batch/BatchFiles.h"
#include "engine/batch/EarlyWork.h"
#include "engine/batch/EyeFiles.h"
#include "engine/batch/FileConversion.h"
#include "engine/batch/FileTask.h"
#include "engine/batch/InputList.h"
#include "engine/batch/OutputGuard.h"
#include "engine/batch/OutputPlace.h"
#include "engine/batch/PictureCheck.h"
#include "engine/batch/UpToDate.h"
#include "engine/inspection/Inspection.h"
#include "engine/inspection/MediaKinds.h"
#include "engine/texts/FileNames.h"
#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"
#include "engine/texts/WarningTexts.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <iterator>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

namespace lumetwin {
namespace {

// The first system version that writes MV-HEVC.
constexpr SystemVersion spatialVideoWriting{14, 4, 0};

using Path = std::filesystem::path;

bool hasWarning(const std::vector<Warning> &warnings) {
    return std::ranges::any_of(warnings, [](const Warning &warning) { return !isNote(warning.kind); });
}

/// Guards all inputs of the run, the files of right eyes too.
OutputGuard guardOf(const BatchFiles &files) {
    std::vector<Path> inputs;
    std::vector<std::size_t> indexes;
    for (std::size_t index = 0; index < files.count(); ++index)
        for (const Path &input : {files.input(index), files.rightEye(index)})
            if (!input.empty()) {
                inputs.push_back(input);
                indexes.push_back(index);
            }
    return OutputGuard(inputs, [&files, indexes = std::move(indexes)](std::size_t input) {
        return files.matchesDirection(indexes[input]);
    });
}

void printLine(const std::string &line) {
    const std::string whole = line + '\n';
    std::fwrite(whole.data(), 1, whole.size(), stdout);
    std::fflush(stdout);
}

template <typename Callback, typename... Arguments> void call(const Callback &callback, const Arguments &...arguments) {
    if (callback)
        callback(arguments...);
}

} // namespace

VideoProcessor::VideoProcessor(std::shared_ptr<const ConversionSettings> theSettings, SystemVersion system,
                               MediaOperations operations)
    : settings(std::move(theSettings)), system_(system), operations_(std::move(operations)) {}

bool VideoProcessor::isSpatialPhoto(const Path &file) const noexcept {
    try {
        return lumetwin::isSpatialPhoto(operations_.lookAtFile(file));
    } catch (const std::exception &) {
        return false;
    }
}

bool VideoProcessor::isSpatialVideo(const Path &file) const noexcept {
    try {
        return lumetwin::isSpatialVideo(operations_.lookAtFile(file), system_);
    } catch (const std::exception &) {
        return false;
    }
}

bool VideoProcessor::isSpatial(const Path &file) {
    const media::InputFile *input = nullptr;
    try {
        input = &opened(file);
    } catch (const std::exception &) {
        return false; // what cannot be opened is no spatial media
    }
    try {
        const MediaFacts facts = operations_.look(*input);
        return lumetwin::isSpatialPhoto(facts) || lumetwin::isSpatialVideo(facts, system_);
    } catch (const std::exception &) {
        failedLooks_[file] = std::current_exception();
        return false;
    }
}

ConversionKind VideoProcessor::kindFor(const Path &input) const {
    if (settings->direction == ConversionDirection::spatialToSBS)
        return isPhotoFile(input) ? ConversionKind::spatialPhotoToSBS : ConversionKind::spatialVideoToSBS;
    return isPhotoFile(input) ? ConversionKind::sbsImageToSpatial : ConversionKind::sbsVideoToSpatial;
}

const media::InputFile &VideoProcessor::opened(const Path &input) const {
    if (!opened_ || opened_->path() != input)
        opened_ = std::make_shared<const media::InputFile>(openInput(kindFor(input), input));
    return *opened_;
}

void VideoProcessor::log(const std::string &line) {
    const std::string safe = printable(line);
    onLog ? onLog(safe) : printLine(safe);
}

void VideoProcessor::processAll() {
    Ending ending;
    try {
        ending = run();
    } catch (const std::exception &error) { // no memory for the list of files, for example
        ending = {false, errorMessage(error)};
    }
    call(onComplete, ending.success, ending.message);
}

VideoProcessor::Ending VideoProcessor::run() {
    if (!settings->outputFolderURL || (!settings->inputFiles && !settings->inputFolderURL))
        return {false, text("error.no.folder")};
    std::vector<ListedFile> files;
    try {
        files = listedFiles();
    } catch (const std::system_error &error) {
        return {false, formatted("error.read.input.folder", error.code().message())};
    }
    files = inputsOfRun(std::move(files), *settings);
    if (files.empty())
        return {false, text("error.no.media.files")};
    const BatchFiles batch(*settings, files, [this](const Path &file) { return isSpatial(file); });
    return convertFiles(batch);
}

std::vector<ListedFile> VideoProcessor::listedFiles() const {
    if (settings->inputFiles)
        return mediaFiles(*settings->inputFiles);
    if (settings->recursive)
        return mediaTree(*settings->inputFolderURL, *settings->outputFolderURL);
    return mediaFiles(visibleChildren(*settings->inputFolderURL));
}

VideoProcessor::Ending VideoProcessor::convertFiles(const BatchFiles &files) {
    const OutputGuard guard = guardOf(files);
    results_.resize(files.count());
    for (std::size_t index = 0; index < files.count(); ++index) {
        results_[index].input = files.input(index);
        results_[index].rightEye = files.rightEye(index);
    }
    EarlyWork early(settings->dryRun ? 1 : operations_.photosAtOnce, [this](FileTask &task) {
        perform(task, [&task](const std::string &line) { task.log.push_back(line); });
    });
    const auto total = static_cast<std::int64_t>(files.count());
    for (std::size_t index = 0; index < files.count(); ++index) {
        if (!cancelRequested) {
            call(onProgress, static_cast<std::int64_t>(index), total, files.name(index));
            processFile(files, index, guard, early);
            opened_ = nullptr;
        }
        call(onResult, results_[index]);
    }
    return ending();
}

VideoProcessor::Ending VideoProcessor::ending() const {
    if (cancelRequested)
        return {false, text("status.cancelled")};
    const std::int64_t converted = std::ranges::count_if(results_, &FileResult::wasConverted);
    const std::int64_t failed = std::ranges::count(results_, FileState::failed, &FileResult::state);
    return {failed == 0, formatted("status.complete", converted, failed)};
}

void VideoProcessor::processFile(const BatchFiles &files, std::size_t index, const OutputGuard &guard,
                                 EarlyWork &early) {
    FileResult &result = results_[index];
    if (const std::string &listingError = files.listingError(index); !listingError.empty()) {
        const std::string message = formatted("error.folder.not.readable.format", files.name(index), listingError);
        return fail(result, message, message);
    }
    const auto beginMore = [&] { workAhead(files, index, guard, early); };
    beginMore();
    const auto began = std::chrono::steady_clock::now();
    const std::unique_ptr<FileTask> task = early.take(index, beginMore);
    try {
        if (task)
            concludeEarly(*task, files, index, result);
        else if (!convertInTurn(files, index, guard, result))
            return;
    } catch (const std::exception &error) {
        fail(result, errorText(error), errorMessage(error));
    } catch (...) {
        fail(result, "unknown error", text("error.unknown"));
    }
    result.seconds =
        task ? task->seconds : std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
}

bool VideoProcessor::convertInTurn(const BatchFiles &files, std::size_t index, const OutputGuard &guard,
                                   FileResult &result) {
    static_cast<void>(files.isSpatial(index));
    if (const auto failed = failedLooks_.find(result.input); failed != failedLooks_.end())
        std::rethrow_exception(failed->second);
    if (isSkipped(files, index, result))
        return false;
    convert(files, index, guard, result);
    return true;
}

bool VideoProcessor::isSkipped(const BatchFiles &files, std::size_t index, FileResult &result) {
    if (!files.matchesDirection(index)) {
        const bool isSpatial = files.isSpatial(index);
        const char *kind = isPhotoFile(result.input) ? " photo" : isSpatial ? " video" : "";
        skip(result, FileState::skipped, text(isSpatial ? "status.skipped.spatial" : "status.skipped.not.spatial"),
             std::string(isSpatial ? "spatial" : "not spatial") + kind);
    } else if (const std::optional<Path> finished = earlierOutput(files, index)) {
        result.output = *finished;
        skip(result, FileState::upToDate, text("status.up.to.date"), "up to date");
    } else if (!chooseOutputPath(files.output(index), settings->onExisting)) {
        const std::string name = lastPathComponent(files.output(index));
        skip(result, FileState::skipped, formatted("status.skipped.exists.format", name), "its result exists");
    } else {
        return false;
    }
    return true;
}

std::optional<std::filesystem::path> VideoProcessor::earlierOutput(const BatchFiles &files, std::size_t index) const {
    // If two inputs have the same output name, it is not known which of them an existing output belongs to.
    if (!settings->skipExisting || !files.inputsWithSameOutput(index).empty())
        return std::nullopt;
    for (const Path &place : existingOutputPaths(files.output(index), settings->onExisting))
        if (isUpToDate(files.input(index), place, operations_) &&
            (files.rightEye(index).empty() || isUpToDate(files.rightEye(index), place, operations_)))
            return place;
    return std::nullopt;
}

void VideoProcessor::skip(FileResult &result, FileState state, const std::string &reason, const std::string &logged) {
    const std::string name = lastPathComponent(result.input);
    result.state = state;
    result.reason = reason;
    log("[VP] ⏭ skip (" + logged + ") " + name);
    call(onSkip, name, reason);
}

void VideoProcessor::fail(FileResult &result, const std::string &logged, const std::string &message) {
    const std::string name = lastPathComponent(result.input);
    result.state = FileState::failed;
    result.reason = message;
    log("[VP] ❌ " + name + ": " + logged);
}

void VideoProcessor::convert(const BatchFiles &files, std::size_t index, const OutputGuard &guard, FileResult &result) {
    const std::unique_ptr<FileTask> task = prepared(files, index, guard);
    if (settings->dryRun)
        return addDryResult(*task, files, index, result);
    perform(*task, [this](const std::string &line) { log(line); });
    conclude(*task, files, index, result);
}

std::unique_ptr<FileTask> VideoProcessor::prepared(const BatchFiles &files, std::size_t index,
                                                   const OutputGuard &guard) const {
    const Path &file = files.input(index);
    const Path output = chooseOutputPath(files.output(index), settings->onExisting).value();
    guard.check(file, output);
    if (!settings->dryRun)
        prepareOutputPath(output, *settings->outputFolderURL);
    auto task = std::make_unique<FileTask>(kindFor(file), opened(file), output);
    if (const Path &rightEye = files.rightEye(index); !rightEye.empty())
        task->input.rightEye = openInput(kindFor(rightEye), rightEye);
    return task;
}

void VideoProcessor::perform(FileTask &task, const std::function<void(const std::string &)> &logLine) const noexcept {
    const auto began = std::chrono::steady_clock::now();
    try {
        checkPicture(task, logLine);
        requireSystemFor(task.kind);
        if (!task.conversion)
            task.conversion.emplace(task.kind, task.output);
        task.outcome =
            task.conversion->run(operations_, *settings, task.input, controlFor(task.input.path(), logLine), system_);
    } catch (...) {
        task.failure = std::current_exception();
    }
    task.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
}

void VideoProcessor::addDryResult(FileTask &task, const BatchFiles &files, std::size_t index, FileResult &result) {
    checkPicture(task, [this](const std::string &line) { log(line); });
    result.disparity = task.check.disparity;
    result.warnings = std::move(task.check.warnings);
    std::ranges::move(expectedWarnings(operations_, *settings, task.input), std::back_inserter(result.warnings));
    addRivals(files, index, result);
    result.state = FileState::wouldBeConverted;
    logWarnings(result);
}

void VideoProcessor::conclude(FileTask &task, const BatchFiles &files, std::size_t index, FileResult &result) {
    result.disparity = task.check.disparity;
    result.warnings = std::move(task.check.warnings);
    if (task.failure)
        std::rethrow_exception(task.failure);
    if (task.outcome.written)
        task.conversion->finish();
    result.framesWritten = task.outcome.framesWritten;
    result.framesExpected = task.outcome.framesExpected;
    std::ranges::move(task.outcome.warnings, std::back_inserter(result.warnings));
    if (!task.outcome.written) {
        result.state = FileState::cancelled;
        return;
    }
    addRivals(files, index, result);
    result.output = task.output;
    std::error_code ignored;
    result.bytes = std::filesystem::file_size(task.output, ignored);
    reportResult(result);
}

void VideoProcessor::checkPicture(FileTask &task, const std::function<void(const std::string &)> &logLine) const {
    task.check = lumetwin::checkPicture(operations_, *settings, task.input);
    task.input.disparityAdjustment = task.check.adjustment;
    if (!task.check.failure.empty())
        logLine("[VP] ℹ️ " + lastPathComponent(task.input.path()) +
                ": its picture was not examined: " + task.check.failure);
}

void VideoProcessor::addRivals(const BatchFiles &files, std::size_t index, FileResult &result) const {
    if (settings->onExisting != OnExisting::replace)
        return;
    for (const std::size_t rival : files.inputsWithSameOutput(index))
        result.warnings.push_back({WarningKind::sameOutputName, {files.name(rival)}});
}

void VideoProcessor::reportResult(FileResult &result) {
    result.state = hasWarning(result.warnings) ? FileState::convertedWithWarnings : FileState::converted;
    logWarnings(result);
}

void VideoProcessor::logWarnings(const FileResult &result) {
    const std::string name = lastPathComponent(result.input);
    for (const Warning &warning : result.warnings)
        log("[VP] " + std::string(isNote(warning.kind) ? "ℹ️ " : "⚠️ ") + name + ": " + warningText(warning));
}

Outcome VideoProcessor::convertPhoto(const Path &input, const Path &output) {
    return convertMedia(opened(input), output);
}

Outcome VideoProcessor::convertVideo(const Path &input, const Path &output) {
    return convertMedia(opened(input), output);
}

void VideoProcessor::requireSystemFor(ConversionKind kind) const {
    if (kind == ConversionKind::sbsVideoToSpatial && system_ < spatialVideoWriting)
        throw processorError(text("error.macos14.required"));
}

Outcome VideoProcessor::convertMedia(const ConversionInput &input, const Path &output) {
    const ConversionKind kind = kindFor(input.path());
    requireSystemFor(kind);
    const ConversionControl control = controlFor(input.path(), [this](const std::string &line) { log(line); });
    return lumetwin::convertFile(operations_, kind, *settings, input, output, control, system_);
}

ConversionControl VideoProcessor::controlFor(const Path &input,
                                             std::function<void(const std::string &)> logLine) const {
    return {.cancelRequested = &cancelRequested,
            .onFrameProgress = isPhotoFile(input) ? nullptr : onFrameProgress,
            .onLog = [logLine = std::move(logLine), name = lastPathComponent(input)](const std::string &line) {
                logLine("[VP] ⚠️ " + name + ": " + line);
            }};
}

} // namespace lumetwin
