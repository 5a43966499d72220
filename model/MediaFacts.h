// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/StereoLayout.h"

#include <cstdint>
#include <optional>
#include <string>

namespace lumetwin {

/// Stereo values in the units of the form. A value that the file does not contain is nullopt.
struct StereoValues {
    std::optional<double> horizontalFOV;  ///< degrees
    std::optional<double> stereoBaseline; ///< millimetres
    std::optional<double> disparity;      ///< percent of the image width

    bool operator==(const StereoValues &) const = default;
};

/// Facts from a file's headers. A fact that the file does not contain is nullopt or empty.
struct MediaFacts {
    enum class Kind { video, photo };
    enum class Eye { none, left, right };

    Kind kind = Kind::video; ///< by the file's extension; any file that is not a photo counts as a video
    bool isReadable = false; ///< the headers are those of a photo, or of a movie with a video track
    bool isSpatial = false;  ///< a photo with a stereo pair, or a video with a camera baseline
    StereoValues values;
    /// How the file has its eyes, according to the first of its tags that says so. Of a name it is only a guess.
    std::optional<StereoLayout> layout;
    /// What another source says, where it says something else.
    std::optional<StereoLayout> otherLayout;
    int furtherPictures = 0; ///< pictures of a photo file that are not its eyes
    std::string projection;  ///< four-character code such as "rect"; empty where absent

    // Only for movies.
    bool hasLeftEye = false;
    bool hasRightEye = false;
    std::optional<Eye> heroEye;
    bool isMultilayer = false; ///< the stream is marked as multilayer HEVC

    bool operator==(const MediaFacts &) const = default;
};

} // namespace lumetwin
