// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/StereoLayout.h"

#include <optional>

namespace lumetwin {

/// How far apart the two eyes see the same things, in percent of the width of an eye. Positive: behind the screen.
struct DisparityFigures {
    double nearest = 0;  ///< the 5th percentile
    double middle = 0;   ///< the 50th percentile
    double farthest = 0; ///< the 95th percentile
    double vertical = 0; ///< median vertical offset; positive: the right eye's picture is lower

    bool operator==(const DisparityFigures &) const = default;
};

/// What the pictures of a file look like. Nothing of it is certain.
struct StereoFindings {
    bool wasExamined = false; ///< false: there was nothing to look at, and the rest says nothing
    /// The arrangement in which two eyes were seen; nullopt: the picture does not look like two eyes.
    std::optional<EyeArrangement> seen;
    bool looksFlat = false;       ///< both eyes show the same picture
    bool isLevel = true;          ///< false: one eye is higher than the other, or turned
    bool probablySwapped = false; ///< the left eye seems to be the right one
    std::optional<DisparityFigures> disparity;
    double unevenness = 0; ///< largest vertical offset within the picture, in percent of the width of an eye

    bool operator==(const StereoFindings &) const = default;
};

} // namespace lumetwin
