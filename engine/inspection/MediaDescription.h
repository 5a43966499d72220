// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/inspection/Inspection.h"

#include <filesystem>
#include <optional>
#include <string>

namespace lumetwin {

/// What a look at a file's headers tells. Facts that the file does not carry are absent.
struct MediaDescription {
    enum class Kind { video, photo };
    enum class Eye { none, left, right };

    Kind kind = Kind::video; ///< by the file's extension; what is no photo is taken for a video
    bool isSpatial = false;
    StereoValues values;

    // Of movies only.
    bool hasLeftEye = false;
    bool hasRightEye = false;
    std::optional<Eye> heroEye;
    std::string projection;    ///< four-character code such as "rect"; empty where absent
    bool isMultilayer = false; ///< announces a layered HEVC stream
};

/// Reads headers, never media data. What cannot be read is not spatial.
MediaDescription describeMedia(const std::filesystem::path &file);

} // namespace lumetwin
