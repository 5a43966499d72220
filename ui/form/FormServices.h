// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"
#include "engine/batch/VideoProcessor.h"
#include "ui/alerts/AlertPresenter.h"
#include "ui/files/FilePanels.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace lumetwin {

/// The result of a spatial check of one file.
struct SpatialFinding {
    bool isSpatial = false;
    StereoValues values = {};
    std::optional<PictureSize> picture = {}; ///< only of files that are not spatial
    std::string failure = {};                ///< why the file cannot be read; empty when it can
};

/// The functions that the form calls outside of itself. Tests replace them.
struct FormServices {
    std::shared_ptr<AlertPresenter> alerts = std::make_shared<MessageBoxPresenter>();
    std::shared_ptr<FilePanels> panels = std::make_shared<DialogPanels>();
    /// The operations on single files.
    MediaOperations operations = MediaOperations::inProcess();
    /// Runs on the batch's thread.
    std::function<void(VideoProcessor &processor)> runBatch = [](VideoProcessor &processor) { processor.processAll(); };
    /// Runs on a background thread.
    std::function<bool(const VideoProcessor &processor, const std::filesystem::path &file)> isSpatialVideo =
        [](const VideoProcessor &processor, const std::filesystem::path &file) {
            return processor.isSpatialVideo(file);
        };
    /// Runs on a background thread. When empty, inspectFile is used.
    std::function<SpatialFinding(const std::filesystem::path &file)> inspect = {};
    /// Shows the outputs in the file manager.
    std::function<void(const std::filesystem::path &folder, const std::vector<std::filesystem::path> &outputs)>
        showInFolder = {};
};

} // namespace lumetwin
