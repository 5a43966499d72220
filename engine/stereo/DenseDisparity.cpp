// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/DenseDisparity.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lumetwin {

namespace {

constexpr int windowRadius = 3;      ///< pixels, of the windows that are compared
constexpr int brightnessRadius = 12; ///< pixels, of the mean that is subtracted
constexpr float largestDifference = 25.0F;
constexpr int agreement = 1; ///< pixels

/// Sums over windows of 2 · radius + 1 rows and columns; windows at the edges are smaller.
void sumWindows(LumaPlane &plane, int radius, std::vector<float> &scratch) {
    const int width = plane.width;
    scratch.resize(plane.samples.size());
    for (int y = 0; y < plane.height; ++y) {
        const float *row = plane.row(y);
        float *out = scratch.data() + static_cast<std::size_t>(y) * width;
        float sum = 0;
        for (int x = 0; x < std::min(radius, width); ++x)
            sum += row[x];
        for (int x = 0; x < width; ++x) {
            sum += x + radius < width ? row[x + radius] : 0.0F;
            out[x] = sum;
            sum -= x >= radius ? row[x - radius] : 0.0F;
        }
    }
    std::vector<float> sums(static_cast<std::size_t>(width));
    const auto add = [&](int y, float sign) {
        const float *row = scratch.data() + static_cast<std::size_t>(y) * width;
        for (int x = 0; x < width; ++x)
            sums[static_cast<std::size_t>(x)] += sign * row[x];
    };
    for (int y = 0; y < std::min(radius, plane.height); ++y)
        add(y, 1);
    for (int y = 0; y < plane.height; ++y) {
        if (y + radius < plane.height)
            add(y + radius, 1);
        std::ranges::copy(sums, plane.row(y));
        if (y >= radius)
            add(y - radius, -1);
    }
}

/// The plane minus the mean of its surroundings.
LumaPlane withoutBrightness(const LumaPlane &plane) {
    LumaPlane means = plane;
    LumaPlane counts{plane.width, plane.height, std::vector<float>(plane.samples.size(), 1.0F)};
    std::vector<float> scratch;
    sumWindows(means, brightnessRadius, scratch);
    sumWindows(counts, brightnessRadius, scratch);
    for (std::size_t index = 0; index < means.samples.size(); ++index)
        means.samples[index] = plane.samples[index] - means.samples[index] / counts.samples[index];
    return means;
}

/// The best disparity of each pixel so far.
struct Best {
    std::vector<float> cost;
    std::vector<float> disparity;

    explicit Best(std::size_t count) : cost(count, std::numeric_limits<float>::max()), disparity(count) {}

    /// Offers one disparity to a row of pixels.
    void offer(std::size_t first, const float *values, int count, int candidate) {
        float *costs = cost.data() + first;
        float *disparities = disparity.data() + first;
        const auto offered = static_cast<float>(candidate);
        for (int x = 0; x < count; ++x) {
            const bool isBetter = values[x] < costs[x];
            costs[x] = isBetter ? values[x] : costs[x];
            disparities[x] = isBetter ? offered : disparities[x];
        }
    }

    std::vector<std::int16_t> whole() const { return {disparity.begin(), disparity.end()}; }
};

/// The differences of pixels for one disparity. Pixels without a partner differ as much as possible.
void compare(const LumaPlane &left, const LumaPlane &right, int disparity, int lower, LumaPlane &costs) {
    std::ranges::fill(costs.samples, largestDifference);
    const int first = std::max(0, -disparity);
    const int end = std::min(left.width, left.width - disparity);
    for (int y = std::max(0, -lower); y < std::min(left.height, left.height - lower); ++y) {
        const float *leftRow = left.row(y);
        const float *rightRow = right.row(y + lower) + disparity;
        float *cost = costs.row(y);
        for (int x = first; x < end; ++x)
            cost[x] = std::min(largestDifference, std::abs(leftRow[x] - rightRow[x]));
    }
}

void offerAll(const LumaPlane &costs, int disparity, int lower, Best &left, Best &right) {
    const int width = costs.width;
    const int first = std::max(0, -disparity);
    const int end = std::min(width, width - disparity);
    for (int y = std::max(0, -lower); y < std::min(costs.height, costs.height - lower); ++y) {
        const float *cost = costs.row(y) + first;
        left.offer(static_cast<std::size_t>(y) * width + first, cost, end - first, disparity);
        right.offer(static_cast<std::size_t>(y + lower) * width + first + disparity, cost, end - first, disparity);
    }
}

/// Whether each pixel and its partner, which lies `sign` disparities beside it, have the same disparity.
void markAgreeing(DenseDisparity &one, const DenseDisparity &other, int sign, int lower) {
    one.agrees.resize(one.disparities.size());
    for (int y = 0; y < one.height; ++y)
        for (int x = 0; x < one.width; ++x) {
            const int disparity = one.disparities[one.index(x, y)];
            const int partnerX = x + sign * disparity;
            const int partnerY = y + sign * lower;
            const bool inside = partnerX >= 0 && partnerX < one.width && partnerY >= 0 && partnerY < one.height;
            one.agrees[one.index(x, y)] =
                inside && std::abs(other.disparities[other.index(partnerX, partnerY)] - disparity) <= agreement;
        }
}

} // namespace

media::EyePair<DenseDisparity> denseDisparity(const media::EyePair<LumaPlane> &planes, int nearest, int farthest,
                                              int lower) {
    const LumaPlane left = withoutBrightness(planes.left);
    const LumaPlane right = withoutBrightness(planes.right);
    LumaPlane costs{left.width, left.height, std::vector<float>(left.samples.size())};
    Best bestLeft(left.samples.size());
    Best bestRight(left.samples.size());
    std::vector<float> scratch;
    for (int disparity = nearest; disparity <= farthest; ++disparity) {
        compare(left, right, disparity, lower, costs);
        sumWindows(costs, windowRadius, scratch);
        offerAll(costs, disparity, lower, bestLeft, bestRight);
    }
    media::EyePair<DenseDisparity> dense{{left.width, left.height, bestLeft.whole(), {}},
                                         {left.width, left.height, bestRight.whole(), {}}};
    markAgreeing(dense.left, dense.right, 1, lower);
    markAgreeing(dense.right, dense.left, -1, lower);
    return dense;
}

} // namespace lumetwin
