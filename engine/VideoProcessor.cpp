// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/VideoProcessor.h"

#include "engine/FileNames.h"
#include "engine/InputList.h"
#include "engine/MediaKinds.h"
#include "engine/OutputGuard.h"
#include "engine/OutputNaming.h"
#include "engine/ProcessorError.h"
#include "engine/Texts.h"

#include <cstdio>
#include <exception>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

namespace lumetwin {
namespace {

// The first system that writes MV-HEVC.
constexpr SystemVersion spatialVideoWriting{14, 4, 0};

using Path = std::filesystem::path;

/// Tells whether a file was written in between: a converter that is cancelled leaves what was there.
std::optional<std::filesystem::file_time_type> timeOf(const Path &file) {
    std::error_code error;
    const auto time = std::filesystem::last_write_time(file, error);
    return error ? std::nullopt : std::optional(time);
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
    return operations_.isSpatialPhoto(file);
}

bool VideoProcessor::isSpatialVideo(const Path &file) const noexcept {
    return operations_.isSpatialVideo(file, system_);
}

void VideoProcessor::log(const std::string &line) {
    const std::scoped_lock lock(logMutex_);
    const std::string safe = printable(line);
    onLog ? onLog(safe) : printLine(safe);
}

void VideoProcessor::processAll() {
    const Ending ending = run();
    call(onComplete, ending.success, ending.message);
}

VideoProcessor::Ending VideoProcessor::run() {
    if (!settings->outputFolderURL || (!settings->inputFiles && !settings->inputFolderURL))
        return {false, text("error.no.folder")};
    std::vector<Path> files;
    try {
        files = mediaFiles(settings->inputFiles ? *settings->inputFiles : visibleChildren(*settings->inputFolderURL));
    } catch (const std::system_error &error) {
        return {false, formatted("error.read.input.folder", error.code().message())};
    }
    if (files.empty())
        return {false, text("error.no.media.files")};
    sortByName(files);
    return convertFiles(files);
}

VideoProcessor::Ending VideoProcessor::convertFiles(const std::vector<Path> &files) {
    const OutputGuard guard(files);
    const auto total = static_cast<std::int64_t>(files.size());
    std::int64_t successCount = 0;
    std::int64_t failCount = 0;
    for (std::int64_t index = 0; index < total && !cancelRequested; ++index) {
        const Path &file = files[static_cast<std::size_t>(index)];
        call(onProgress, index, total, lastPathComponent(file));
        switch (handle(file, guard)) {
        case Outcome::converted:
            ++successCount;
            break;
        case Outcome::failed:
            ++failCount;
            break;
        case Outcome::skipped:
            break;
        }
    }
    if (cancelRequested)
        return {false, text("status.cancelled")};
    return {failCount == 0, formatted("status.complete", successCount, failCount)};
}

VideoProcessor::Outcome VideoProcessor::handle(const Path &file, const OutputGuard &guard) {
    if (isUnsuited(file))
        return Outcome::skipped;
    const std::string name = lastPathComponent(file);
    try {
        convert(file, guard);
        return Outcome::converted;
    } catch (const std::exception &error) {
        log("[VP] ❌ " + name + ": " + errorText(error));
        call(onFailure, name, errorMessage(error));
    } catch (...) {
        log("[VP] ❌ " + name + ": unknown error");
        call(onFailure, name, std::string("unknown error"));
    }
    return Outcome::failed;
}

bool VideoProcessor::isUnsuited(const Path &file) {
    const bool isPhoto = isPhotoFile(file);
    const bool wantsSpatial = settings->direction == ConversionDirection::spatialToSBS;
    const bool isSpatial = isPhoto ? isSpatialPhoto(file) : isSpatialVideo(file);
    if (isSpatial == wantsSpatial)
        return false;
    const std::string name = lastPathComponent(file);
    const char *kind = isPhoto ? " photo" : isSpatial ? " video" : "";
    log(std::string("[VP] ⏭ skip (") + (isSpatial ? "spatial" : "not spatial") + kind + ") " + name);
    call(onSkip, name, text(isSpatial ? "status.skipped.spatial" : "status.skipped.not.spatial"));
    return true;
}

void VideoProcessor::convert(const Path &file, const OutputGuard &guard) {
    const Path output = *settings->outputFolderURL / outputName(file, *settings);
    guard.check(file, output);
    const auto before = timeOf(output);
    if (isPhotoFile(file))
        convertPhoto(file, output);
    else
        convertVideo(file, output);
    if (!cancelRequested || timeOf(output) != before)
        call(onConverted, lastPathComponent(file), output);
}

void VideoProcessor::convertPhoto(const Path &input, const Path &output) {
    if (settings->direction == ConversionDirection::spatialToSBS)
        operations_.convertSpatialPhotoToSBS(*settings, input, output);
    else
        operations_.convertSBSImageToSpatial(*settings, input, output);
}

void VideoProcessor::convertVideo(const Path &input, const Path &output) {
    const std::string name = lastPathComponent(input);
    const ConversionControl control{
        .cancelRequested = &cancelRequested,
        .onFrameProgress = onFrameProgress,
        .onWarning = [&](const std::string &warning) { log("[VP] ⚠️ " + name + ": " + warning); },
    };
    if (settings->direction == ConversionDirection::spatialToSBS)
        return operations_.convertSpatialVideoToSBS(*settings, input, output, control, system_);
    if (system_ < spatialVideoWriting)
        throw processorError(text("error.macos14.required"));
    operations_.convertSBSVideoToSpatial(*settings, input, output, control, system_);
}

} // namespace lumetwin
