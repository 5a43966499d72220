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

/// What a spatial check finds in a file.
struct SpatialFinding {
    bool isSpatial = false;
    StereoValues values = {};
    std::optional<PictureSize> picture = {}; ///< of what is not spatial
    std::string failure = {};                ///< why the file cannot be read; empty where it can
};

/// What the form needs from the world around it. Tests put other answers in.
struct FormServices {
    std::shared_ptr<AlertPresenter> alerts = std::make_shared<MessageBoxPresenter>();
    std::shared_ptr<FilePanels> panels = std::make_shared<DialogPanels>();
    /// What is done to single files.
    MediaOperations operations = MediaOperations::inProcess();
    /// On the batch's thread.
    std::function<void(VideoProcessor &processor)> runBatch = [](VideoProcessor &processor) { processor.processAll(); };
    /// On a background thread.
    std::function<bool(const VideoProcessor &processor, const std::filesystem::path &file)> isSpatialVideo =
        [](const VideoProcessor &processor, const std::filesystem::path &file) {
            return processor.isSpatialVideo(file);
        };
    /// On a background thread; empty: the form's own inspection.
    std::function<SpatialFinding(const std::filesystem::path &file)> inspect = {};
    /// Shows outputs in the file manager.
    std::function<void(const std::filesystem::path &folder, const std::vector<std::filesystem::path> &outputs)>
        showInFolder = {};
};

} // namespace lumetwin
