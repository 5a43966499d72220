// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/stereo/LumaPlane.h"

#include <vector>

namespace lumetwin {

/// A plane with integral images of its samples and of their squares, of one row and column more than the plane.
struct SummedPlane {
    const LumaPlane &plane;
    std::vector<double> sums;
    std::vector<double> squares;

    explicit SummedPlane(const LumaPlane &of);
};

/// A plane that blocks of one size are searched in.
class BlockSearch {
public:
    struct Place {
        int x = 0; ///< upper left corner of the block
        int y = 0;
        double correlation = -1;
    };

    /// Corners of blocks, both ends included.
    struct Area {
        int left = 0;
        int right = 0;
        int top = 0;
        int bottom = 0;
    };

    BlockSearch(const SummedPlane &summed, int blockSize) : summed_(summed), plane_(summed.plane), size_(blockSize) {}

    const LumaPlane &plane() const { return plane_; }
    int blockSize() const { return size_; }
    /// The area around a corner in which blocks are entirely in the plane; may be empty.
    Area around(int x, int y, int reachX, int reachY) const;
    /// The standard deviation of a block's samples.
    double deviation(int x, int y) const;

    /// The best place of another plane's block. The first of equal ones. found() then gives all correlations.
    Place best(const LumaPlane &other, int x, int y, const Area &area);
    /// The correlations of the latest search with each place of its area, row by row.
    const std::vector<float> &found() const { return found_; }
    /// The highest correlation of a block of this plane with places at least `distance` columns beside it, up to
    /// `reach`.
    double likeness(int x, int y, int distance, int reach);

private:
    const std::vector<float> &correlations(const LumaPlane &other, int x, int y, const Area &area);
    void takeBlock(const LumaPlane &from, int x, int y);
    void deviations(int x, int y, int count, float *target) const;
    void correlateRow(int y, int left, int count, float *target);

    const SummedPlane &summed_;
    const LumaPlane &plane_;
    int size_;
    std::vector<float> block_; ///< the block that is searched, minus its mean
    double norm_ = 0;
    std::vector<float> row_; ///< the deviations of a row of places
    std::vector<float> found_;
};

} // namespace lumetwin
