// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/stereo/DisparityMap.h"
#include "model/StereoFindings.h"

namespace lumetwin {

/// How much two pictures look like the two eyes of a scene. Shares are 0 to 1.
struct StereoEvidence {
    int distinct = 0;         ///< number of blocks that can be found again
    double correlated = 0;    ///< share of them that correlate with a place of the other eye
    double returning = 0;     ///< share of these whose place leads back
    double agreeing = 0;      ///< share of these whose vertical offset agrees with the others
    double coherent = 0;      ///< share of these with about the disparity of the blocks around them
    double likeness = 0;      ///< median correlation of the blocks that lead back
    double unevenness = 0;    ///< largest vertical offset within the picture, in percent of the width
    DisparityFigures figures; ///< of the blocks that lead back and agree
    bool isRepeated = false;  ///< the picture is a repeated pattern, so that its parts are alike anyway
    /// Correlation of disparity and height in the picture, -1 to 1; positive where what is lower is nearer.
    double slope = 0;

    /// Whether there is enough texture to say anything.
    bool isTelling() const;
    /// Whether the eyes, if they are some, are at the same height and not turned.
    bool isLevel() const;
    /// Whether the pictures are two eyes.
    bool isStereo() const;
    /// Whether they are two eyes that are turned or badly aligned, so that fewer blocks are found again.
    bool isUnalignedStereo() const;
    bool looksFlat() const;
};

/// What a map shows; not whether the picture is repeated.
StereoEvidence stereoEvidence(const DisparityMap &map);

/// What two planes of one size show.
StereoEvidence stereoEvidence(const LumaPlane &left, const LumaPlane &right);

} // namespace lumetwin
