// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/stereo/LumaPlane.h"

#include <vector>

namespace lumetwin {

/// A block that correlates less with its best place was not found.
inline constexpr double leastCorrelation = 0.75;

/// Where a block of the left eye's picture is in the right eye's. Lengths are in pixels of the planes.
struct BlockMatch {
    double x = 0; ///< centre of the block in the left eye
    double y = 0;
    /// Whether the block has enough texture to be found again, and does not look like its neighbourhood.
    bool isDistinct = false;
    double correlation = 0; ///< of the best place, -1 to 1
    double disparity = 0;   ///< x in the right eye minus x in the left eye; positive: behind the screen
    double vertical = 0;    ///< y in the right eye minus y in the left eye; positive: lower in the right eye
    bool returns = false;   ///< the place that was found correlates and leads back to the block
};

/// The blocks of a pair of eyes, side by side without overlap.
struct DisparityMap {
    int width = 0; ///< of the planes
    int height = 0;
    std::vector<BlockMatch> blocks;
};

/// Compares two planes of one size, about 512 wide: blocks of 24 × 24 by zero-mean normalised cross-correlation, first
/// at half the size, from left to right and back. The search reaches 10 % of the width horizontally and 1.6 % of it
/// vertically. On two threads. No blocks when the planes are too small or differ in size.
DisparityMap disparityMap(const LumaPlane &left, const LumaPlane &right);

/// Whether most of an eye's picture recurs in the same rows, farther away than disparityMap() searches: a pattern whose
/// halves are alike without being two eyes.
bool isRepeatedPattern(const LumaPlane &eye);

} // namespace lumetwin
