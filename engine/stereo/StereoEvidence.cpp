// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/StereoEvidence.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <span>

namespace lumetwin {

namespace {

constexpr int leastBlocks = 25;       ///< distinct blocks that show two eyes
constexpr int fewestBlocks = 8;       ///< fewer say nothing
constexpr double verticalSlack = 1.2; ///< pixels by which the vertical offset of a block may differ from the others'
constexpr int fittings = 5;
constexpr double aroundBlock = 40.0; ///< pixels: the distance of the eight blocks around a block, and a little more
constexpr double smoothness = 0.015; ///< of the width: disparities that differ by less are about the same
constexpr double levelLimit = 0.25;  ///< percent of the width
constexpr double unevenLimit = 0.5;  ///< the same, at the edge of the picture

double shareOf(std::size_t part, std::size_t whole) {
    return whole > 0 ? static_cast<double>(part) / static_cast<double>(whole) : 0;
}

/// The value below which a share of the values lies; the values are reordered.
double percentile(std::vector<double> &values, double share) {
    if (values.empty())
        return 0;
    const auto index = static_cast<std::ptrdiff_t>(std::lround(share * static_cast<double>(values.size() - 1)));
    std::nth_element(values.begin(), values.begin() + index, values.end());
    return values[static_cast<std::size_t>(index)];
}

/// The vertical offset of an eye that is moved, turned and scaled against the other one: a plane over the picture.
struct VerticalPlane {
    double centreX = 0;
    double centreY = 0;
    double offset = 0; ///< pixels, at the centre
    double alongX = 0;
    double alongY = 0;

    double at(double x, double y) const { return offset + alongX * (x - centreX) + alongY * (y - centreY); }
    double distance(const BlockMatch &block) const { return std::abs(block.vertical - at(block.x, block.y)); }
};

/// Sums of a least squares fit of a plane; solved by Cramer's rule.
class PlaneFit {
public:
    void add(double x, double y, double value) {
        const std::array<double, 3> terms{1, x, y};
        for (std::size_t row = 0; row < 3; ++row) {
            for (std::size_t column = 0; column < 3; ++column)
                products_[row][column] += terms[row] * terms[column];
            values_[row] += terms[row] * value;
        }
    }

    /// Offset, slope along x, slope along y; zeros when the points lie on a line.
    std::array<double, 3> solve() const {
        const double whole = determinant(products_);
        if (std::abs(whole) < 1e-3)
            return {};
        std::array<double, 3> solution{};
        for (std::size_t column = 0; column < 3; ++column) {
            Matrix replaced = products_;
            for (std::size_t row = 0; row < 3; ++row)
                replaced[row][column] = values_[row];
            solution[column] = determinant(replaced) / whole;
        }
        return solution;
    }

private:
    using Matrix = std::array<std::array<double, 3>, 3>;

    static double determinant(const Matrix &m) {
        return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
               m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    }

    Matrix products_{};
    std::array<double, 3> values_{};
};

/// Fits the plane to the blocks, again and again without those that are far from it.
VerticalPlane fittedPlane(const DisparityMap &map, std::span<const BlockMatch> blocks) {
    VerticalPlane plane{map.width / 2.0, map.height / 2.0};
    std::vector<double> verticals;
    for (const BlockMatch &block : blocks)
        verticals.push_back(block.vertical);
    plane.offset = percentile(verticals, 0.5);
    for (int round = 0; round < fittings; ++round) {
        const double slack = verticalSlack * (fittings - round);
        PlaneFit fit;
        std::size_t count = 0;
        for (const BlockMatch &block : blocks) {
            if (plane.distance(block) > slack)
                continue;
            fit.add((block.x - plane.centreX) / map.width, (block.y - plane.centreY) / map.width, block.vertical);
            ++count;
        }
        if (count < fewestBlocks)
            break;
        const auto [offset, alongX, alongY] = fit.solve();
        plane.offset = offset;
        plane.alongX = alongX / map.width;
        plane.alongY = alongY / map.width;
    }
    return plane;
}

double largestOffset(const VerticalPlane &plane, const DisparityMap &map) {
    // Not to the corners: there are seldom blocks.
    const double beside = std::abs(plane.alongX) * map.width * 0.4;
    const double above = std::abs(plane.alongY) * map.height * 0.4;
    return std::abs(plane.offset) + std::max(beside, above);
}

/// Pearson's correlation of disparity and height in the picture.
double slopeOf(std::span<const BlockMatch> blocks) {
    const auto count = static_cast<double>(blocks.size());
    double meanY = 0;
    double meanDisparity = 0;
    for (const BlockMatch &block : blocks) {
        meanY += block.y / count;
        meanDisparity += block.disparity / count;
    }
    double both = 0;
    double squaresY = 0;
    double squaresDisparity = 0;
    for (const BlockMatch &block : blocks) {
        const double y = block.y - meanY;
        const double disparity = block.disparity - meanDisparity;
        both += y * disparity;
        squaresY += y * y;
        squaresDisparity += disparity * disparity;
    }
    const double length = std::sqrt(squaresY * squaresDisparity);
    return length > 0 ? -both / length : 0;
}

/// Whether at least half of the blocks around a block have about its disparity. In a repeated pattern, blocks are found
/// at any of its repetitions.
bool isCoherent(const BlockMatch &block, std::span<const BlockMatch> blocks, double tolerance) {
    int around = 0;
    int same = 0;
    for (const BlockMatch &other : blocks) {
        if (&other == &block || std::abs(other.x - block.x) > aroundBlock || std::abs(other.y - block.y) > aroundBlock)
            continue;
        ++around;
        same += std::abs(other.disparity - block.disparity) <= tolerance ? 1 : 0;
    }
    return around > 0 && 2 * same >= around;
}

double coherence(std::span<const BlockMatch> blocks, double tolerance) {
    const auto count =
        std::ranges::count_if(blocks, [&](const BlockMatch &block) { return isCoherent(block, blocks, tolerance); });
    return shareOf(static_cast<std::size_t>(count), blocks.size());
}

DisparityFigures figuresOf(std::span<const BlockMatch> blocks, const VerticalPlane &plane, int width) {
    std::vector<double> disparities;
    for (const BlockMatch &block : blocks)
        disparities.push_back(block.disparity);
    const auto percent = [&](double pixels) { return pixels * 100 / width; };
    return {.nearest = percent(percentile(disparities, 0.05)),
            .middle = percent(percentile(disparities, 0.5)),
            .farthest = percent(percentile(disparities, 0.95)),
            .vertical = percent(plane.offset)};
}

} // namespace

bool StereoEvidence::isTelling() const {
    return distinct >= fewestBlocks;
}

bool StereoEvidence::isLevel() const {
    return std::abs(figures.vertical) <= levelLimit && unevenness <= unevenLimit;
}

bool StereoEvidence::isStereo() const {
    return !isRepeated && distinct >= leastBlocks && correlated >= 0.5 && returning >= 0.8 && agreeing >= 0.65 &&
           coherent >= 0.75;
}

bool StereoEvidence::isUnalignedStereo() const {
    return !isRepeated && !isLevel() && !looksFlat() && distinct >= leastBlocks && correlated >= 0.5 &&
           returning >= 0.55 && agreeing >= 0.5 && coherent >= 0.85;
}

bool StereoEvidence::looksFlat() const {
    return figures.farthest - figures.nearest < 0.15 && likeness > 0.96;
}

StereoEvidence stereoEvidence(const DisparityMap &map) {
    StereoEvidence evidence;
    std::vector<BlockMatch> blocks;
    std::size_t correlated = 0;
    for (const BlockMatch &block : map.blocks) {
        if (!block.isDistinct)
            continue;
        ++evidence.distinct;
        if (block.correlation < leastCorrelation)
            continue;
        ++correlated;
        if (block.returns)
            blocks.push_back(block);
    }
    evidence.correlated = shareOf(correlated, static_cast<std::size_t>(evidence.distinct));
    evidence.returning = shareOf(blocks.size(), correlated);
    const std::size_t returning = blocks.size();
    const VerticalPlane plane = fittedPlane(map, blocks);
    std::erase_if(blocks, [&](const BlockMatch &block) { return plane.distance(block) > verticalSlack; });
    evidence.agreeing = shareOf(blocks.size(), returning);
    if (blocks.empty())
        return evidence;
    std::vector<double> correlations;
    for (const BlockMatch &block : blocks)
        correlations.push_back(block.correlation);
    evidence.likeness = percentile(correlations, 0.5);
    evidence.coherent = coherence(blocks, smoothness * map.width);
    evidence.unevenness = largestOffset(plane, map) * 100 / map.width;
    evidence.figures = figuresOf(blocks, plane, map.width);
    evidence.slope = slopeOf(blocks);
    return evidence;
}

StereoEvidence stereoEvidence(const LumaPlane &left, const LumaPlane &right) {
    StereoEvidence evidence = stereoEvidence(disparityMap(left, right));
    if (evidence.isStereo() || evidence.isUnalignedStereo())
        evidence.isRepeated = isRepeatedPattern(left);
    return evidence;
}

} // namespace lumetwin
