// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace lumetwin {

/// Stereo values in the form's units; absent where a file does not carry them.
struct StereoValues {
    std::optional<double> horizontalFOV;  ///< degrees
    std::optional<double> stereoBaseline; ///< millimetres
    std::optional<double> disparity;      ///< percent of the image width

    bool operator==(const StereoValues &) const = default;
};

/// What one look at a file's headers tells. Facts that the file does not carry are absent.
struct MediaFacts {
    enum class Kind { video, photo };
    enum class Eye { none, left, right };

    Kind kind = Kind::video; ///< by the file's extension; what is no photo is taken for a video
    bool isSpatial = false;  ///< a photo that holds a stereo pair, a film that announces a camera baseline
    StereoValues values;

    // Of movies only.
    bool hasLeftEye = false;
    bool hasRightEye = false;
    std::optional<Eye> heroEye;
    std::string projection;    ///< four-character code such as "rect"; empty where absent
    bool isMultilayer = false; ///< announces a layered HEVC stream

    bool operator==(const MediaFacts &) const = default;
};

} // namespace lumetwin
