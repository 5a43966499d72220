// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"
#include "model/ConversionSettings.h"
#include "model/SystemVersion.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace lumetwin {

class OutputGuard;

/// Converts one batch: lists, sorts, skips what does not suit the direction, converts the rest one after another, and
/// reports. One processor serves one run. A bad file never stops the batch; only cancelRequested does.
class VideoProcessor {
public:
    explicit VideoProcessor(std::shared_ptr<const ConversionSettings> settings,
                            SystemVersion system = SystemVersion::current(),
                            MediaOperations operations = MediaOperations::standard());

    std::shared_ptr<const ConversionSettings> settings;
    /// Set from any thread to stop the run; seen before the next file and between frames. Never reset.
    std::atomic<bool> cancelRequested{false};

    // Callbacks; those left empty are not called, none may throw. They are called on the thread of processAll,
    // except that onFrameProgress, and onLog with warnings, come from a conversion's own threads (one at a time).
    // File names are the file system's own: they may hold control characters or bytes that are no UTF-8.

    /// Starting file index (from 0) of total, also for files that are then skipped.
    std::function<void(std::int64_t index, std::int64_t total, const std::string &fileName)> onProgress;
    std::function<void(std::int64_t currentFrame, std::int64_t totalFrames)> onFrameProgress;
    std::function<void(const std::string &fileName, const std::string &reason)> onSkip;
    /// The end of the run, exactly once for each call of processAll.
    std::function<void(bool success, const std::string &message)> onComplete;
    /// A file whose conversion failed, with the error's message (also logged).
    std::function<void(const std::string &fileName, const std::string &message)> onFailure;
    /// A file that was converted.
    std::function<void(const std::string &fileName, const std::filesystem::path &output)> onConverted;
    /// Receives every log line, without its end and safe to print; standard output while empty.
    std::function<void(const std::string &line)> onLog;

    /// Runs the whole batch on the calling thread and returns when it is over. Never throws.
    void processAll();

    bool isSpatialPhoto(const std::filesystem::path &file) const noexcept;
    bool isSpatialVideo(const std::filesystem::path &file) const noexcept;

    /// Converts one video in the direction of the settings. Throws the converter's error.
    void convertVideo(const std::filesystem::path &input, const std::filesystem::path &output);
    /// Converts one photo in the direction of the settings. Throws the converter's error.
    void convertPhoto(const std::filesystem::path &input, const std::filesystem::path &output);

private:
    enum class Outcome { converted, skipped, failed };
    struct Ending {
        bool success = false;
        std::string message;
    };

    Ending run();
    Ending convertFiles(const std::vector<std::filesystem::path> &files);
    Outcome handle(const std::filesystem::path &file, const OutputGuard &guard);
    /// Whether the file does not suit the direction; says so in the log and to onSkip.
    bool isUnsuited(const std::filesystem::path &file);
    void convert(const std::filesystem::path &file, const OutputGuard &guard);
    void log(const std::string &line);

    SystemVersion system_;
    MediaOperations operations_;
    std::mutex logMutex_;
};

} // namespace lumetwin
