// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionControl.h"
#include "engine/Outcome.h"
#include "model/ConversionSettings.h"
#include "model/SystemVersion.h"

#include <filesystem>
#include <functional>

namespace lumetwin {

/// What a batch does to its single files, as values: tests drive a batch without converting anything.
struct MediaOperations {
    using Path = std::filesystem::path;
    using VideoConverter = std::function<Outcome(const ConversionSettings &, const Path &input, const Path &output,
                                                 const ConversionControl &, SystemVersion)>;
    using PhotoConverter = std::function<Outcome(const ConversionSettings &, const Path &input, const Path &output,
                                                 const ConversionControl &)>;

    std::function<bool(const Path &, SystemVersion)> isSpatialVideo;
    std::function<bool(const Path &)> isSpatialPhoto;
    VideoConverter convertSpatialVideoToSBS;
    VideoConverter convertSBSVideoToSpatial;
    PhotoConverter convertSpatialPhotoToSBS;
    PhotoConverter convertSBSImageToSpatial;

    /// The engine's own operations.
    static MediaOperations standard();
};

} // namespace lumetwin
