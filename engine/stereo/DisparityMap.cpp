// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/DisparityMap.h"

#include "engine/stereo/BlockSearch.h"

#include <algorithm>
#include <cmath>
#include <future>

namespace lumetwin {

namespace {

constexpr int blockSize = 24;        ///< pixels of the full planes
constexpr double reachX = 0.10;      ///< of the width: more than that no eyes can follow
constexpr double reachY = 0.016;     ///< of the width
constexpr double leastTexture = 3.0; ///< standard deviation of a block's samples
// A block that looks like places so many pixels beside it (of the half planes) could be found there by mistake: a
// horizontal edge, a repeated pattern.
constexpr int besides = 4;
constexpr double mostLikeness = 0.92;
constexpr double repetition = 0.85;     ///< likeness of what recurs, maybe between two pixels
constexpr double returnTolerance = 2.0; ///< pixels

int coarseReach(const LumaPlane &full) {
    return static_cast<int>(std::ceil(full.width * reachX / 2));
}

/// A place of a block in the other eye, with fractions of pixels.
struct Found {
    double x = 0;
    double y = 0;
    double correlation = -1;
};

/// The offset of a peak from its highest sample, -0.5 to 0.5.
double peakOffset(double before, double peak, double after) {
    const double curve = before - 2 * peak + after;
    return curve < 0 ? std::clamp((before - after) / (2 * curve), -0.5, 0.5) : 0;
}

/// One eye, for searches in it.
struct EyePlanes {
    LumaPlane half;
    SummedPlane fullSums;
    SummedPlane halfSums;

    explicit EyePlanes(const LumaPlane &full) : half(halved(full)), fullSums(full), halfSums(half) {}
    EyePlanes(const EyePlanes &) = delete;
};

/// The search for blocks of one eye in the other one, coarse to fine.
class EyeSearch {
public:
    explicit EyeSearch(const EyePlanes &planes)
        : full_(planes.fullSums, blockSize), half_(planes.halfSums, blockSize / 2) {
        coarseX_ = coarseReach(full());
        coarseY_ = static_cast<int>(std::ceil(full().width * reachY / 2));
    }

    const LumaPlane &full() const { return full_.plane(); }
    const LumaPlane &half() const { return half_.plane(); }

    bool isDistinct(int x, int y) {
        return full_.deviation(x, y) >= leastTexture && half_.likeness(x / 2, y / 2, besides, coarseX_) < mostLikeness;
    }

    /// Finds the block of the other eye with its corner at x, y.
    Found find(const EyeSearch &other, int x, int y) {
        const BlockSearch::Place coarse =
            half_.best(other.half(), x / 2, y / 2, half_.around(x / 2, y / 2, coarseX_, coarseY_));
        const int startX = x + 2 * (coarse.x - x / 2);
        const int startY = y + 2 * (coarse.y - y / 2);
        return finest(other, x, y, full_.around(startX, startY, 2, 2));
    }

private:
    Found finest(const EyeSearch &other, int x, int y, const BlockSearch::Area &area) {
        const BlockSearch::Place best = full_.best(other.full(), x, y, area);
        Found found{static_cast<double>(best.x), static_cast<double>(best.y), best.correlation};
        const std::vector<float> &all = full_.found();
        const int columns = area.right - area.left + 1;
        const auto at = [&](int column, int row) {
            return static_cast<double>(all[static_cast<std::size_t>(row - area.top) * columns + column - area.left]);
        };
        if (best.x > area.left && best.x < area.right)
            found.x += peakOffset(at(best.x - 1, best.y), best.correlation, at(best.x + 1, best.y));
        if (best.y > area.top && best.y < area.bottom)
            found.y += peakOffset(at(best.x, best.y - 1), best.correlation, at(best.x, best.y + 1));
        return found;
    }

    BlockSearch full_;
    BlockSearch half_;
    int coarseX_ = 0;
    int coarseY_ = 0;
};

bool leadsBack(EyeSearch &left, const EyeSearch &right, int x, int y, const Found &found) {
    const int startX = static_cast<int>(std::lround(found.x));
    const int startY = static_cast<int>(std::lround(found.y));
    const Found back = left.find(right, startX, startY);
    return std::abs(back.x - x) <= returnTolerance && std::abs(back.y - y) <= returnTolerance;
}

BlockMatch match(EyeSearch &left, EyeSearch &right, int x, int y) {
    BlockMatch block;
    block.x = x + blockSize / 2.0;
    block.y = y + blockSize / 2.0;
    block.isDistinct = left.isDistinct(x, y);
    if (!block.isDistinct)
        return block;
    const Found found = right.find(left, x, y);
    block.correlation = found.correlation;
    block.disparity = found.x - x;
    block.vertical = found.y - y;
    block.returns = found.correlation >= leastCorrelation && leadsBack(left, right, x, y, found);
    return block;
}

} // namespace

DisparityMap disparityMap(const LumaPlane &left, const LumaPlane &right) {
    DisparityMap map{left.width, left.height, {}};
    if (left.width != right.width || left.height != right.height || left.width < 2 * blockSize ||
        left.height < 2 * blockSize)
        return map;
    const EyePlanes leftPlanes(left);
    const EyePlanes rightPlanes(right);
    const int columns = left.width / blockSize;
    const int rows = left.height / blockSize;
    const int marginX = (left.width - columns * blockSize) / 4 * 2;
    const int marginY = (left.height - rows * blockSize) / 4 * 2;
    const auto matchRows = [&](int first, int end) {
        EyeSearch leftSearch(leftPlanes);
        EyeSearch rightSearch(rightPlanes);
        std::vector<BlockMatch> blocks;
        for (int row = first; row < end; ++row)
            for (int column = 0; column < columns; ++column)
                blocks.push_back(
                    match(leftSearch, rightSearch, marginX + column * blockSize, marginY + row * blockSize));
        return blocks;
    };
    auto lower = std::async(std::launch::async, matchRows, rows / 2, rows);
    map.blocks = matchRows(0, rows / 2);
    const std::vector<BlockMatch> others = lower.get();
    map.blocks.insert(map.blocks.end(), others.begin(), others.end());
    return map;
}

bool isRepeatedPattern(const LumaPlane &eye) {
    const LumaPlane half = halved(eye);
    constexpr int size = blockSize / 2;
    const SummedPlane sums(half);
    BlockSearch search(sums, size);
    const int reach = coarseReach(eye);
    int textured = 0;
    int repeated = 0;
    // Every second block is enough; as on a chessboard, because the lines of a pattern may all lie between others.
    for (int y = 0; y + size <= half.height; y += size)
        for (int x = y / size % 2 * size; x + size <= half.width; x += 2 * size) {
            if (search.deviation(x, y) < leastTexture)
                continue;
            ++textured;
            repeated += search.likeness(x, y, reach, half.width) >= repetition ? 1 : 0;
        }
    return textured > 0 && 2 * repeated > textured;
}

} // namespace lumetwin
