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
class EarlyWork;
class OutputGuard;
struct FileTask;
struct ListedFile;

/// Converts one batch: lists and sorts the files, skips those that do not match the direction, converts the others, and
/// reports. Files are reported, and their outputs get their names, one after another. Photos may be worked on before
/// that, while earlier photos are. A processor runs once. A bad file never stops the batch; only cancelRequested does.
class VideoProcessor {
public:
    explicit VideoProcessor(std::shared_ptr<const ConversionSettings> settings,
                            SystemVersion system = SystemVersion::current(),
                            MediaOperations operations = MediaOperations::inProcess());

    std::shared_ptr<const ConversionSettings> settings;
    /// May be set from any thread to stop the run. Checked before each file and between frames. Never reset.
    std::atomic<bool> cancelRequested{false};

    // Callbacks. Empty ones are not called; one that throws ends the run. They are called on the thread of processAll,
    // except onFrameProgress, which is called on the conversion's thread. File names are those of the file system: they
    // may contain control characters or bytes that are not valid UTF-8.

    /// A file begins, even one that is then skipped. index: from 0.
    std::function<void(std::int64_t index, std::int64_t total, const std::string &fileName)> onProgress;
    std::function<void(std::int64_t currentFrame, std::int64_t totalFrames)> onFrameProgress;
    std::function<void(const std::string &fileName, const std::string &reason)> onSkip;
    /// The run has ended. Called exactly once for each call of processAll.
    std::function<void(bool success, const std::string &message)> onComplete;
    /// The final result of a file. Called once for each file of the run.
    std::function<void(const FileResult &result)> onResult;
    /// Receives every log line, without a line feed and safe to print. When empty, the log is printed to standard
    /// output.
    std::function<void(const std::string &line)> onLog;

    /// Runs the whole batch on the calling thread and returns when it has ended. Never throws.
    void processAll();

    /// The results of the files, in the order of the run. Complete when processAll has returned.
    const std::vector<FileResult> &results() const { return results_; }

    bool isSpatialPhoto(const std::filesystem::path &file) const noexcept;
    bool isSpatialVideo(const std::filesystem::path &file) const noexcept;

    /// Converts one video in the direction of the settings. Throws the converter's error.
    Outcome convertVideo(const std::filesystem::path &input, const std::filesystem::path &output);
    /// Converts one photo in the direction of the settings. Throws the converter's error.
    Outcome convertPhoto(const std::filesystem::path &input, const std::filesystem::path &output);

private:
    struct Ending {
        bool success = false;
        std::string message;
    };

    Ending run();
    std::vector<ListedFile> listedFiles() const;
    Ending convertFiles(const BatchFiles &files);
    Ending ending() const;
    /// Processes one file, or takes what was done early, and fills in its result.
    void processFile(const BatchFiles &files, std::size_t index, const OutputGuard &guard, EarlyWork &early);
    /// Begins photos before their turn: those from `first` on that no file before them can influence.
    void workAhead(const BatchFiles &files, std::size_t first, const OutputGuard &guard, EarlyWork &early);
    enum class Early { begun, notNeeded, mustWait };
    Early beginEarly(const BatchFiles &files, std::size_t index, const OutputGuard &guard, EarlyWork &early);
    /// The pixels of both eyes, or a few more. Throws when they cannot be found out.
    std::int64_t pixelsOf(const FileTask &task) const;
    /// Returns false when the file is skipped.
    bool convertInTurn(const BatchFiles &files, std::size_t index, const OutputGuard &guard, FileResult &result);
    /// Whether the file is skipped, because of its direction or an existing output. If so, reports the reason.
    bool isSkipped(const BatchFiles &files, std::size_t index, FileResult &result);
    /// The output that an earlier run has finished, if such files are skipped.
    std::optional<std::filesystem::path> earlierOutput(const BatchFiles &files, std::size_t index) const;
    void skip(FileResult &result, FileState state, const std::string &reason, const std::string &logged);
    void convert(const BatchFiles &files, std::size_t index, const OutputGuard &guard, FileResult &result);
    /// Chooses the output and opens the inputs.
    std::unique_ptr<FileTask> prepared(const BatchFiles &files, std::size_t index, const OutputGuard &guard) const;
    /// Examines the picture and writes the partial output. Keeps the error in the task. Called on any thread.
    void perform(FileTask &task, const std::function<void(const std::string &)> &logLine) const noexcept;
    void concludeEarly(FileTask &task, const BatchFiles &files, std::size_t index, FileResult &result);
    /// Gives the output its name and fills in the result.
    void conclude(FileTask &task, const BatchFiles &files, std::size_t index, FileResult &result);
    void fail(FileResult &result, const std::string &logged, const std::string &message);
    /// Examines the picture before the conversion, and chooses the disparity adjustment if that is asked for.
    void checkPicture(FileTask &task, const std::function<void(const std::string &)> &logLine) const;
    void addDryResult(FileTask &task, const BatchFiles &files, std::size_t index, FileResult &result);
    /// Warns of other inputs whose output has the same name.
    void addRivals(const BatchFiles &files, std::size_t index, FileResult &result) const;
    void reportResult(FileResult &result);
    void logWarnings(const FileResult &result);
    void log(const std::string &line);
    /// The current input, opened once for inspection and conversion. Throws the conversion's error when it cannot be
    /// opened.
    const media::InputFile &opened(const std::filesystem::path &input) const;
    /// For the files of the run. If the look fails, the error is kept in failedLooks_ and becomes the file's result.
    bool isSpatial(const std::filesystem::path &file);
    ConversionKind kindFor(const std::filesystem::path &input) const;
    ConversionControl controlFor(const std::filesystem::path &input,
                                 std::function<void(const std::string &)> logLine) const;
    /// Throws when this system cannot convert so.
    void requireSystemFor(ConversionKind kind) const;
    Outcome convertMedia(const ConversionInput &input, const std::filesystem::path &output);

    SystemVersion system_;
    MediaOperations operations_;
    std::vector<FileResult> results_;
    std::map<std::filesystem::path, std::exception_ptr> failedLooks_;
    mutable std::shared_ptr<const media::InputFile> opened_; ///< the latest
};

} // namespace lumetwin
