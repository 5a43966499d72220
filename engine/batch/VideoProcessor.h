// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"
#include "model/ConversionSettings.h"
#include "model/FileResult.h"
#include "model/SystemVersion.h"

#include <atomic>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumetwin {

class BatchFiles;
class OutputGuard;
struct ListedFile;

/// Converts one batch: lists, sorts, skips what does not suit the direction, converts the rest one after another, and
/// reports. One processor serves one run. A bad file never stops the batch; only cancelRequested does.
class VideoProcessor {
public:
    explicit VideoProcessor(std::shared_ptr<const ConversionSettings> settings,
                            SystemVersion system = SystemVersion::current(),
                            MediaOperations operations = MediaOperations::inProcess());

    std::shared_ptr<const ConversionSettings> settings;
    /// Set from any thread to stop the run; seen before the next file and between frames. Never reset.
    std::atomic<bool> cancelRequested{false};

    // Callbacks; those left empty are not called, none may throw. They are called on the thread of processAll,
    // except that onFrameProgress comes from a conversion's own thread.
    // File names are the file system's own: they may hold control characters or bytes that are no UTF-8.

    /// Starting file index (from 0) of total, also for files that are then skipped.
    std::function<void(std::int64_t index, std::int64_t total, const std::string &fileName)> onProgress;
    std::function<void(std::int64_t currentFrame, std::int64_t totalFrames)> onFrameProgress;
    std::function<void(const std::string &fileName, const std::string &reason)> onSkip;
    /// The end of the run, exactly once for each call of processAll.
    std::function<void(bool success, const std::string &message)> onComplete;
    /// What became of a file, once that is final: one call for each file of the run.
    std::function<void(const FileResult &result)> onResult;
    /// Receives every log line, without its end and safe to print; standard output while empty.
    std::function<void(const std::string &line)> onLog;

    /// Runs the whole batch on the calling thread and returns when it is over. Never throws.
    void processAll();

    /// The files of the run in its order, with what became of them. Complete when processAll has returned.
    const std::vector<FileResult> &results() const { return results_; }

    bool isSpatialPhoto(const std::filesystem::path &file) const noexcept;
    bool isSpatialVideo(const std::filesystem::path &file) const noexcept;

    /// Converts one video in the direction of the settings. Throws the converter's error.
    Outcome convertVideo(const std::filesystem::path &input, const std::filesystem::path &output);
    /// Converts one photo in the direction of the settings. Throws the converter's error.
    Outcome convertPhoto(const std::filesystem::path &input, const std::filesystem::path &output);

    const MediaOperations &operations() const { return operations_; }

private:
    struct Ending {
        bool success = false;
        std::string message;
    };

    Ending run();
    std::vector<ListedFile> listedFiles() const;
    Ending convertFiles(const BatchFiles &files);
    Ending ending() const;
    /// Works one file off and fills in its result.
    void handle(const BatchFiles &files, std::size_t index, const OutputGuard &guard);
    /// Whether the file is passed over, by its direction or by what lies at its output's place; then says why.
    bool isSkipped(const BatchFiles &files, std::size_t index, FileResult &result);
    /// The result that an earlier run has finished, where such results are left alone.
    std::optional<std::filesystem::path> finishedEarlier(const BatchFiles &files, std::size_t index) const;
    void skip(FileResult &result, FileState state, const std::string &reason, const std::string &logged);
    void convert(const BatchFiles &files, std::size_t index, const OutputGuard &guard, FileResult &result);
    void fail(FileResult &result, const std::string &logged, const std::string &message);
    void tell(FileResult &result);
    void log(const std::string &line);
    /// The input that is at work, opened once for the look at it and its conversion. Throws what the conversion says of
    /// a file that cannot be opened.
    const media::InputFile &opened(const std::filesystem::path &input) const;
    /// For the files of the run. If the look fails, the error is kept in failedLooks_ and becomes the file's result.
    bool isSpatial(const std::filesystem::path &file);
    ConversionKind kindFor(const std::filesystem::path &input) const;
    ConversionControl controlFor(const std::filesystem::path &input,
                                 std::function<void(std::int64_t, std::int64_t)> onProgressOfFrames);
    Outcome convertFile(const std::filesystem::path &input, const std::filesystem::path &output,
                        const ConversionControl &control);

    SystemVersion system_;
    MediaOperations operations_;
    std::vector<FileResult> results_;
    std::map<std::filesystem::path, std::exception_ptr> failedLooks_;
    mutable std::shared_ptr<const media::InputFile> opened_; ///< the latest
};

} // namespace lumetwin
