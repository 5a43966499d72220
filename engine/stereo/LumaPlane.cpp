// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/LumaPlane.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace lumetwin {

namespace {

/// Adds a row of one plane's samples to the sums.
template <typename Sample>
void addRow(const media::Picture &picture, int plane, int y, int first, float weight, std::vector<float> &sums) {
    const media::Picture::Plane &from = picture.planes[static_cast<std::size_t>(plane)];
    const auto *row = reinterpret_cast<const Sample *>(from.data + y * from.stride) + first;
    for (std::size_t x = 0; x < sums.size(); ++x)
        sums[x] += weight * static_cast<float>(row[x]);
}

/// Adds a row of the picture's brightness (of RGB roughly: green counts twice).
void addLuma(const media::Picture &picture, int y, int first, float weight, std::vector<float> &sums) {
    const bool isRGB = picture.format.model == media::ColourModel::rgb;
    const auto add = [&](int plane, float share) {
        if (picture.format.depth > 8)
            addRow<std::uint16_t>(picture, plane, y, first, weight * share, sums);
        else
            addRow<std::uint8_t>(picture, plane, y, first, weight * share, sums);
    };
    add(0, isRGB ? 0.25F : 1.0F);
    if (isRGB) {
        add(1, 0.5F);
        add(2, 0.25F);
    }
}

/// Averages a row of sums to the target's width. Edges between two samples are shared by both.
void averageColumns(const std::vector<float> &sums, std::vector<double> &totals, float *target, int width) {
    totals[0] = 0;
    for (std::size_t x = 0; x < sums.size(); ++x)
        totals[x + 1] = totals[x] + sums[x];
    const double step = static_cast<double>(sums.size()) / width;
    const auto totalAt = [&](double x) {
        const std::size_t whole = std::min(static_cast<std::size_t>(x), sums.size() - 1);
        return totals[whole] + (x - static_cast<double>(whole)) * sums[whole];
    };
    double before = 0;
    for (int x = 0; x < width; ++x) {
        const double after = totalAt((x + 1) * step);
        target[x] = static_cast<float>((after - before) / step);
        before = after;
    }
}

} // namespace

LumaPlane reducedLuma(const media::Picture &picture, const media::Rect &part, int width, int height) {
    const int left = std::clamp(static_cast<int>(std::lround(part.x)), 0, picture.width);
    const int top = std::clamp(static_cast<int>(std::lround(part.y)), 0, picture.height);
    const int right = std::clamp(static_cast<int>(std::lround(part.x + part.width)), left, picture.width);
    const int bottom = std::clamp(static_cast<int>(std::lround(part.y + part.height)), top, picture.height);
    if (width <= 0 || height <= 0 || left == right || top == bottom)
        return {};
    LumaPlane plane{width, height, std::vector<float>(static_cast<std::size_t>(width) * height)};
    const float scale = 255.0F / static_cast<float>((1 << picture.format.depth) - 1);
    std::vector<float> sums(static_cast<std::size_t>(right - left));
    std::vector<double> totals(sums.size() + 1);
    for (int y = 0; y < height; ++y) {
        const std::int64_t rows = bottom - top;
        const int from = top + static_cast<int>(rows * y / height);
        const int to = std::max(from + 1, top + static_cast<int>(rows * (y + 1) / height));
        std::ranges::fill(sums, 0.0F);
        for (int source = from; source < to; ++source)
            addLuma(picture, source, left, scale / static_cast<float>(to - from), sums);
        averageColumns(sums, totals, plane.row(y), width);
    }
    return plane;
}

LumaPlane halved(const LumaPlane &plane) {
    LumaPlane half{plane.width / 2, plane.height / 2, {}};
    half.samples.resize(static_cast<std::size_t>(half.width) * half.height);
    for (int y = 0; y < half.height; ++y) {
        const float *upper = plane.row(2 * y);
        const float *lower = plane.row(2 * y + 1);
        float *target = half.row(y);
        for (int x = 0; x < half.width; ++x)
            target[x] = (upper[2 * x] + upper[2 * x + 1] + lower[2 * x] + lower[2 * x + 1]) / 4;
    }
    return half;
}

} // namespace lumetwin
