// SPDX-License-Identifier: GPL-3.0-or-later
// Photos that a batch works on before their turn.
#include "engine/batch/BatchFiles.h"
#include "engine/batch/EarlyWork.h"
#include "engine/batch/FileTask.h"
#include "engine/batch/OutputPlace.h"
#include "engine/batch/VideoProcessor.h"
#include "engine/inspection/MediaKinds.h"
#include "media/PartialFile.h"

#include <algorithm>
#include <exception>
#include <memory>

namespace lumetwin {

void VideoProcessor::workAhead(const BatchFiles &files, std::size_t first, const OutputGuard &guard, EarlyWork &early) {
    const std::size_t end = std::min(files.count(), first + early.reach());
    std::size_t &next = early.nextToConsider;
    for (next = std::max(next, first); next < end && !cancelRequested; ++next)
        if (!early.hasRoom(0) || beginEarly(files, next, guard, early) == Early::mustWait)
            return;
}

VideoProcessor::Early VideoProcessor::beginEarly(const BatchFiles &files, std::size_t index, const OutputGuard &guard,
                                                 EarlyWork &early) {
    try {
        const bool isConverted = files.matchesDirection(index) && !failedLooks_.contains(files.input(index));
        if (!isConverted || earlierOutput(files, index) || !chooseOutputPath(files.output(index), settings->onExisting))
            return Early::notNeeded;
        // Several outputs with one name are written in turn; a new folder is for a file that the run has reached.
        if (!isPhotoFile(files.input(index)) || !files.inputsWithSameOutput(index).empty() ||
            !std::filesystem::is_directory(files.output(index).parent_path()))
            return Early::mustWait;
        std::unique_ptr<FileTask> task = prepared(files, index, guard);
        const std::int64_t pixels = pixelsOf(*task);
        // Names may also be the same because the file system ignores case.
        if (!early.hasRoom(pixels) || std::filesystem::exists(media::PartialFile::nameFor(task->output)))
            return Early::mustWait;
        task->conversion.emplace(task->kind, task->output);
        return early.begin(index, std::move(task), pixels) ? Early::begun : Early::mustWait;
    } catch (const std::exception &) {
        return Early::mustWait; // it fails in its turn
    }
}

std::int64_t VideoProcessor::pixelsOf(const FileTask &task) const {
    constexpr std::int64_t largest = 1 << 20;
    const PictureSize size = operations_.measure(task.input);
    const bool isOfOneEye = task.kind == ConversionKind::spatialPhotoToSBS || task.input.rightEye;
    return std::min(size.width, largest) * std::min(size.height, largest) * (isOfOneEye ? 2 : 1);
}

void VideoProcessor::concludeEarly(FileTask &task, const BatchFiles &files, std::size_t index, FileResult &result) {
    for (const std::string &line : task.log)
        log(line);
    conclude(task, files, index, result);
}

} // namespace lumetwin
