// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/EyeOrder.h"

#include "engine/stereo/DenseDisparity.h"

#include <algorithm>
#include <cmath>

namespace lumetwin {

namespace {

constexpr int smallestStep = 3;   ///< pixels of disparity between a thing and its background
constexpr int edgeReach = 5;      ///< pixels around the end of a strip where its edge is looked for
constexpr int edgeRows = 3;       ///< above and below a row that its edges are averaged over
constexpr double leastEdge = 8.0; ///< difference of brightness that is an edge
constexpr int alike = 7;          ///< neighbouring rows show the same edge
constexpr int fewestStrips = 40;
// What a look needs before its eyes are called swapped. Of pairs of eyes in their right order, some have the slope (a
// ceiling, a table seen from below), but hardly one also has the edges.
constexpr double leastSlope = 0.4;
constexpr double leastOcclusion = 0.1;
constexpr double leastCertainty = 2.0;

/// The surpluses of edges on one end of strips, -1 to 1 each.
struct Surplus {
    int count = 0;
    double sum = 0;
    double squares = 0;

    void add(double value) {
        ++count;
        sum += value;
        squares += value * value;
    }
};

/// Strips of one row of the left eye, or of a mirrored row of the right eye, that the other eye does not see.
class StripRow {
public:
    StripRow(const LumaPlane &plane, const DenseDisparity &dense, int y, bool isMirrored)
        : plane_(plane), dense_(dense), y_(y), isMirrored_(isMirrored) {}

    void addTo(Surplus &surplus) const {
        int end = 0;
        for (int begin = nextStrip(0, end); begin < dense_.width; begin = nextStrip(end, end))
            if (isBesideNearThing(begin, end))
                addEdges(begin, end, surplus);
    }

private:
    std::size_t index(int x) const { return dense_.index(isMirrored_ ? dense_.width - 1 - x : x, y_); }
    bool agrees(int x) const { return dense_.agrees[index(x)] != 0; }
    int disparity(int x) const { return dense_.disparities[index(x)]; }

    /// The first pixel of the next strip from x on, and the pixel after it.
    int nextStrip(int x, int &end) const {
        while (x < dense_.width && agrees(x))
            ++x;
        end = x;
        while (end < dense_.width && !agrees(end))
            ++end;
        return x;
    }

    bool isSteady(int x, int step) const {
        for (int count = 0; count < edgeReach; ++count, x += step)
            if (x < 0 || x >= dense_.width || !agrees(x) || std::abs(disparity(x) - disparity(x - count * step)) > 1)
                return false;
        return true;
    }

    /// Whether the disparity falls from left to right by as much as the strip is wide.
    bool isBesideNearThing(int begin, int end) const {
        if (begin == 0 || end == dense_.width || !isSteady(begin - 1, -1) || !isSteady(end, 1))
            return false;
        const int fall = disparity(begin - 1) - disparity(end);
        return fall >= smallestStep && std::abs(end - begin - fall) <= std::max(2, fall / 3);
    }

    /// The difference of brightness across a column, over some rows: the edges of things are longer than texture.
    double edgeAt(int x) const {
        const int at = isMirrored_ ? dense_.width - 1 - x : x;
        double difference = 0;
        int rows = 0;
        for (int y = std::max(0, y_ - edgeRows); y <= std::min(plane_.height - 1, y_ + edgeRows); ++y, ++rows)
            difference += plane_.row(y)[at + 1] - plane_.row(y)[at - 1];
        return std::abs(difference) / rows;
    }

    double edge(int from, int to) const {
        double strongest = 0;
        for (int x = std::max(1, from); x <= std::min(dense_.width - 2, to); ++x)
            strongest = std::max(strongest, edgeAt(x));
        return strongest;
    }

    void addEdges(int begin, int end, Surplus &surplus) const {
        const double left = edge(begin - edgeReach, begin);
        const double right = edge(end - 1, end - 1 + edgeReach);
        if (std::max(left, right) >= leastEdge)
            surplus.add((right - left) / (right + left));
    }

    const LumaPlane &plane_;
    const DenseDisparity &dense_;
    int y_;
    bool isMirrored_;
};

} // namespace

EyeOrderCues eyeOrderCues(const media::EyePair<LumaPlane> &planes, const StereoEvidence &evidence) {
    EyeOrderCues cues{.slope = evidence.slope};
    const int width = planes.left.width;
    const auto pixels = [&](double percent) { return percent * width / 100; };
    const int nearest = static_cast<int>(std::floor(pixels(evidence.figures.nearest - 1)));
    const int farthest = static_cast<int>(std::ceil(pixels(evidence.figures.farthest + 1)));
    const media::EyePair<DenseDisparity> dense =
        denseDisparity(planes, nearest, farthest, static_cast<int>(std::lround(pixels(evidence.figures.vertical))));
    Surplus surplus;
    for (int y = 0; y < planes.left.height; ++y) {
        StripRow(planes.left, dense.left, y, false).addTo(surplus);
        StripRow(planes.right, dense.right, y, true).addTo(surplus);
    }
    cues.strips = surplus.count;
    if (surplus.count < fewestStrips)
        return cues;
    cues.occlusion = surplus.sum / surplus.count;
    const double variance = surplus.squares / surplus.count - cues.occlusion * cues.occlusion;
    cues.certainty = std::abs(cues.occlusion) / std::sqrt(std::max(1e-6, variance) * alike / surplus.count);
    return cues;
}

bool mayBeSwapped(const EyeOrderCues &cues) {
    return cues.slope <= -leastSlope;
}

bool areSwapped(std::span<const EyeOrderCues> cues) {
    double certainty = 0;
    for (const EyeOrderCues &cue : cues) {
        if (!mayBeSwapped(cue) || cue.occlusion > -leastOcclusion)
            return false;
        certainty += cue.certainty;
    }
    return !cues.empty() && certainty >= leastCertainty * std::sqrt(static_cast<double>(cues.size()));
}

} // namespace lumetwin
