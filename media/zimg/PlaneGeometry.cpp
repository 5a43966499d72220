// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/zimg/PlaneGeometry.h"

#include <algorithm>
#include <cmath>

namespace lumetwin::media::zimg {

namespace {

// Positions closer than this to an integer count as integers. It covers rounding errors and is far below one grey
// level.
constexpr double tolerance = 1e-6;

bool whole(double value) {
    return std::abs(value - std::round(value)) < tolerance;
}

/// The nearest integer sample positions below and above a position, within a plane.
int roundedDown(double value, int samples) {
    return static_cast<int>(std::clamp(std::floor(value + tolerance), 0.0, static_cast<double>(samples)));
}
int roundedUp(double value, int samples) {
    return static_cast<int>(std::clamp(std::ceil(value - tolerance), 0.0, static_cast<double>(samples)));
}

/// One axis of a plane.
struct Line {
    int samples;    ///< of the plane
    double length;  ///< of the picture in samples of the plane; not an integer when the size is odd
    double site;    ///< offset of a sample from the middle of its cell
    double divisor; ///< picture pixels per sample
};

/// Left and top-left chroma is at the first luma sample of its group, centred chroma in the middle of the group (ITU-T
/// H.273, 8.7).
double site(bool onFirstSample, int shift) {
    return onFirstSample ? 0.5 / (1 << shift) - 0.5 : 0;
}

Line horizontal(const Picture &picture, int plane) {
    const int shift = picture.format.model == ColourModel::grey ? 0 : picture.format.shiftX(plane);
    const double divisor = 1 << shift;
    const bool onFirst = picture.colour.chromaLocation != ChromaLocation::centre;
    return {(picture.width + (1 << shift) - 1) >> shift, picture.width / divisor, site(onFirst, shift), divisor};
}

Line vertical(const Picture &picture, int plane) {
    const int shift = picture.format.model == ColourModel::grey ? 0 : picture.format.shiftY(plane);
    const double divisor = 1 << shift;
    const bool onFirst = picture.colour.chromaLocation == ChromaLocation::topLeft;
    return {(picture.height + (1 << shift) - 1) >> shift, picture.height / divisor, site(onFirst, shift), divisor};
}

struct Span {
    double begin;
    double length;
    double end() const { return begin + length; }
    Span over(const Line &line) const { return {begin / line.divisor, length / line.divisor}; }
    bool usable() const { return std::isfinite(begin) && std::isfinite(length) && length > 0; }
};

struct SpanPlacement {
    Span source;
    Span target;
    Span clip;
    bool takesSharedSamples;
};

/// The visible part of the target, including samples that are shared with others.
Span visibleSpan(const SpanPlacement &place, const Line &canvas) {
    double begin = std::max(place.target.begin, place.clip.begin);
    double end = std::min(place.target.end(), place.clip.end());
    if (place.takesSharedSamples && end > begin) {
        if (place.target.begin <= place.clip.begin + tolerance)
            begin = std::floor(begin + tolerance);
        if (place.target.end() >= place.clip.end() - tolerance)
            end = std::ceil(end - tolerance);
    }
    begin = std::max(begin, 0.0);
    return {begin, std::min(end, canvas.length) - begin};
}

/// The visible share of each touched sample. The part outside the canvas does not count.
std::vector<float> coverage(const PlaneAxis &axis, const Span &visible, const Line &canvas) {
    std::vector<float> covered(static_cast<std::size_t>(axis.count));
    for (int index = 0; index < axis.count; ++index) {
        const double begin = axis.first + index;
        const double end = std::min(begin + 1, canvas.length);
        const double part = (std::min(end, visible.end()) - std::max(begin, visible.begin)) / (end - begin);
        covered[static_cast<std::size_t>(index)] =
            part > 1 - tolerance ? 1.0F : static_cast<float>(std::max(part, 0.0));
    }
    return covered;
}

/// Selects the source samples that are completely inside the shown part. A sample that is partly outside (chroma at an
/// odd edge) contains values from outside and is left out, unless there is no other.
void chooseWindow(PlaneAxis &axis, const Span &source, const Line &line) {
    int first = roundedUp(source.begin, line.samples);
    int end = source.end() > line.length - tolerance ? line.samples : roundedDown(source.end(), line.samples);
    if (end <= first) {
        first = roundedDown(source.begin, line.samples);
        end = roundedUp(source.end(), line.samples);
    }
    axis.windowFirst = first;
    axis.windowCount = end - first;
}

void chooseRegion(PlaneAxis &axis, const SpanPlacement &place, const Line &source, const Line &canvas) {
    // A target thinner than a sample is treated as that sample with low opacity. Otherwise the filter would need an
    // area many pictures wide.
    const bool thin = place.target.length < 1 && place.source.length > place.target.length;
    const Span target = thin ? Span{static_cast<double>(axis.first), 1} : place.target;
    const double scale = place.source.length / target.length;
    axis.regionBegin =
        place.source.begin + (axis.first + canvas.site - target.begin) * scale - source.site - axis.windowFirst;
    axis.regionLength = axis.count * scale;
    axis.moved = std::abs(axis.regionLength - axis.count) < tolerance && whole(axis.regionBegin) &&
                 axis.regionBegin > -tolerance && axis.regionBegin + axis.regionLength < axis.windowCount + tolerance;
}

PlaneAxis planeAxis(const SpanPlacement &inPixels, const Line &source, const Line &canvas) {
    PlaneAxis axis;
    if (!inPixels.source.usable() || !inPixels.target.usable() || !inPixels.clip.usable())
        return axis;
    const SpanPlacement place{inPixels.source.over(source), inPixels.target.over(canvas), inPixels.clip.over(canvas),
                              inPixels.takesSharedSamples};
    const Span visible = visibleSpan(place, canvas);
    axis.first = roundedDown(visible.begin, canvas.samples);
    axis.count = std::max(0, roundedUp(visible.end(), canvas.samples) - axis.first);
    chooseWindow(axis, place.source, source);
    if (axis.empty())
        return axis;
    axis.covered = coverage(axis, visible, canvas);
    chooseRegion(axis, place, source, canvas);
    return axis;
}

} // namespace

PlaneGeometry planeGeometry(const Placement &placement, const Picture &picture, const Picture &canvas, int plane) {
    const auto &[source, target, clip, shared] = placement;
    const SpanPlacement across{{source.x, source.width}, {target.x, target.width}, {clip.x, clip.width}, shared};
    const SpanPlacement down{{source.y, source.height}, {target.y, target.height}, {clip.y, clip.height}, shared};
    return {planeAxis(across, horizontal(picture, plane), horizontal(canvas, plane)),
            planeAxis(down, vertical(picture, plane), vertical(canvas, plane))};
}

} // namespace lumetwin::media::zimg
