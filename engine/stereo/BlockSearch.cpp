// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/BlockSearch.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace lumetwin {

namespace {

// A block that is less uneven than this (standard deviation of its samples) correlates with nothing.
constexpr float flatness = 0.5F;

} // namespace

SummedPlane::SummedPlane(const LumaPlane &of) : plane(of) {
    const std::size_t stride = static_cast<std::size_t>(plane.width) + 1;
    sums.resize(stride * (plane.height + 1));
    squares.resize(sums.size());
    for (int y = 0; y < plane.height; ++y) {
        double rowSum = 0;
        double rowSquares = 0;
        for (int x = 0; x < plane.width; ++x) {
            const double value = plane.row(y)[x];
            rowSum += value;
            rowSquares += value * value;
            const std::size_t at = stride * (y + 1) + x + 1;
            sums[at] = sums[at - stride] + rowSum;
            squares[at] = squares[at - stride] + rowSquares;
        }
    }
}

BlockSearch::Area BlockSearch::around(int x, int y, int reachX, int reachY) const {
    return {std::max(0, x - reachX), std::min(plane_.width - size_, x + reachX), std::max(0, y - reachY),
            std::min(plane_.height - size_, y + reachY)};
}

/// The deviations of the blocks at `count` places of a row.
void BlockSearch::deviations(int x, int y, int count, float *target) const {
    const std::size_t stride = static_cast<std::size_t>(plane_.width) + 1;
    const std::size_t upper = stride * y + x;
    const std::size_t lower = upper + stride * size_;
    const double share = 1.0 / (static_cast<double>(size_) * size_);
    const auto mean = [&](const double *integral, int place) {
        const double *above = integral + upper + place;
        const double *below = integral + lower + place;
        return (below[size_] - below[0] - above[size_] + above[0]) * share;
    };
    for (int place = 0; place < count; ++place) {
        const double middle = mean(summed_.sums.data(), place);
        const double square = mean(summed_.squares.data(), place);
        target[place] = static_cast<float>(std::sqrt(std::max(0.0, square - middle * middle)));
    }
}

double BlockSearch::deviation(int x, int y) const {
    float value = 0;
    deviations(x, y, 1, &value);
    return value;
}

void BlockSearch::takeBlock(const LumaPlane &from, int x, int y) {
    block_.clear();
    for (int line = 0; line < size_; ++line)
        block_.insert(block_.end(), from.row(y + line) + x, from.row(y + line) + x + size_);
    const float mean = std::accumulate(block_.begin(), block_.end(), 0.0F) / static_cast<float>(block_.size());
    double squares = 0;
    for (float &value : block_) {
        value -= mean;
        squares += static_cast<double>(value) * value;
    }
    norm_ = std::sqrt(squares);
}

/// Correlates the block with `count` places of a row.
void BlockSearch::correlateRow(int y, int left, int count, float *target) {
    std::fill_n(target, count, 0.0F);
    for (int line = 0; line < size_; ++line) {
        const float *source = plane_.row(y + line) + left;
        for (int column = 0; column < size_; ++column) {
            const float value = block_[static_cast<std::size_t>(line) * size_ + column];
            for (int place = 0; place < count; ++place)
                target[place] += value * source[column + place];
        }
    }
    row_.resize(static_cast<std::size_t>(count));
    deviations(left, y, count, row_.data());
    const auto length = static_cast<float>(norm_ * size_);
    const bool isFlat = norm_ < flatness * size_;
    for (int place = 0; place < count; ++place) {
        const float uneven = row_[static_cast<std::size_t>(place)];
        const float correlation = std::clamp(target[place] / (length * std::max(uneven, flatness)), -1.0F, 1.0F);
        target[place] = isFlat || uneven < flatness ? -1.0F : correlation;
    }
}

const std::vector<float> &BlockSearch::correlations(const LumaPlane &other, int x, int y, const Area &area) {
    const int columns = std::max(0, area.right - area.left + 1);
    const int rows = std::max(0, area.bottom - area.top + 1);
    found_.resize(static_cast<std::size_t>(columns) * rows);
    if (found_.empty())
        return found_;
    takeBlock(other, x, y);
    for (int row = 0; row < rows; ++row)
        correlateRow(area.top + row, area.left, columns, found_.data() + static_cast<std::size_t>(row) * columns);
    return found_;
}

BlockSearch::Place BlockSearch::best(const LumaPlane &other, int x, int y, const Area &area) {
    const std::vector<float> &all = correlations(other, x, y, area);
    if (all.empty())
        return {x, y, -1};
    const int columns = area.right - area.left + 1;
    const auto index = static_cast<int>(std::ranges::max_element(all) - all.begin());
    return {area.left + index % columns, area.top + index / columns, all[static_cast<std::size_t>(index)]};
}

double BlockSearch::likeness(int x, int y, int distance, int reach) {
    const Area area = around(x, y, reach, 1);
    const std::vector<float> &all = correlations(plane_, x, y, area);
    const int columns = std::max(0, area.right - area.left + 1);
    double highest = -1;
    for (std::size_t index = 0; index < all.size(); ++index)
        if (std::abs(area.left + static_cast<int>(index) % columns - x) >= distance)
            highest = std::max(highest, static_cast<double>(all[index]));
    return highest;
}

} // namespace lumetwin
