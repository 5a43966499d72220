// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/Compositor.h"

#include "media/zimg/PlaneFilter.h"
#include "media/zimg/PlaneGeometry.h"
#include "media/zimg/PlanePainting.h"
#include "media/zimg/RangeTable.h"

#include <algorithm>
#include <cmath>
#include <list>
#include <memory>
#include <stdexcept>
#include <vector>

namespace lumetwin::media {

namespace {

using zimg::PlaneFilter;
using zimg::PlaneGeometry;
using zimg::PlaneView;

// Enough for two eyes of a frame, and some frames that differ.
constexpr std::size_t keptPlans = 8;

int neutral(int depth) {
    return 1 << (depth - 1);
}

/// The sample value of black.
int black(const Picture &picture, int plane) {
    const int depth = picture.format.depth;
    if (picture.format.model == ColourModel::yuv && plane > 0)
        return neutral(depth);
    const bool full = picture.format.model == ColourModel::yuv ? picture.colour.range == ColourRange::full
                                                               : picture.colour.range != ColourRange::limited;
    return full ? 0 : 16 << (depth - 8);
}

/// All properties of a picture that affect its placement.
struct Shape {
    int width;
    int height;
    PictureFormat format;
    ColourRange range;
    ChromaLocation chromaLocation;

    explicit Shape(const Picture &picture)
        : width(picture.width), height(picture.height), format(picture.format), range(picture.colour.range),
          chromaLocation(picture.colour.chromaLocation) {}
    bool operator==(const Shape &) const = default;
};

/// How one plane of a canvas is drawn.
struct PlanePlan {
    int sourcePlane = 0; ///< -1 if the source has none (chroma of grey)
    PlaneGeometry geometry;
    std::shared_ptr<const PlaneFilter> filter; ///< null if samples are copied unchanged
};

struct Plan {
    Shape picture;
    Shape canvas;
    Placement placement;
    std::vector<PlanePlan> planes;
};

bool isChroma(const PictureFormat &format, int plane) {
    return format.model == ColourModel::yuv && plane > 0;
}

bool convertsRange(const Picture &picture, const Picture &canvas) {
    return picture.colour.range != ColourRange::unspecified && canvas.colour.range != ColourRange::unspecified &&
           picture.colour.range != canvas.colour.range;
}

/// Whether a filter treats the samples as full range. This matters only when the depth changes.
bool fullRange(const Picture &picture, const Picture &canvas, int plane) {
    if (isChroma(canvas.format, plane))
        return false; // depth is reduced by a shift, which keeps the neutral value exact
    const ColourRange stated =
        canvas.colour.range != ColourRange::unspecified ? canvas.colour.range : picture.colour.range;
    return stated == ColourRange::unspecified ? canvas.format.model != ColourModel::yuv : stated == ColourRange::full;
}

std::shared_ptr<const PlaneFilter> makeFilter(const Picture &picture, const Picture &canvas, int plane,
                                              const PlaneGeometry &geometry) {
    const bool changesRange = convertsRange(picture, canvas);
    const int sourceDepth = picture.format.depth;
    const int depth = canvas.format.depth;
    if (geometry.moved() && sourceDepth == depth && !changesRange)
        return nullptr;
    PlaneFilter::Table table;
    if (changesRange)
        table = zimg::rangeTable(sourceDepth, isChroma(canvas.format, plane), picture.colour.range, canvas.colour.range,
                                 depth);
    const auto &[x, y] = geometry;
    const Rect region{x.regionBegin, y.regionBegin, x.regionLength, y.regionLength};
    return std::make_shared<const PlaneFilter>(zimg::Resampling{x.windowCount, y.windowCount, sourceDepth, region,
                                                                x.count, y.count, depth,
                                                                fullRange(picture, canvas, plane)},
                                               std::move(table));
}

PlanePlan planPlane(const Picture &picture, const Placement &placement, const Picture &canvas, int plane) {
    PlanePlan plan;
    plan.geometry = zimg::planeGeometry(placement, picture, canvas, plane);
    plan.sourcePlane = plane;
    if (picture.format.model == ColourModel::grey)
        plan.sourcePlane = isChroma(canvas.format, plane) ? -1 : 0;
    if (!plan.geometry.empty() && plan.sourcePlane >= 0)
        plan.filter = makeFilter(picture, canvas, plane, plan.geometry);
    return plan;
}

Plan makePlan(const Picture &picture, const Placement &placement, const Picture &canvas) {
    Plan plan{Shape(picture), Shape(canvas), placement, {}};
    const int planes = canvas.format.planeCount();
    for (int plane = 0; plane < std::min(planes, 2); ++plane)
        plan.planes.push_back(planPlane(picture, placement, canvas, plane));
    if (planes > 2) { // the third plane is like the second
        plan.planes.push_back(plan.planes.back());
        plan.planes.back().sourcePlane = plan.planes[1].sourcePlane < 1 ? plan.planes[1].sourcePlane : 2;
    }
    return plan;
}

} // namespace

struct Compositor::Filters {
    std::list<Plan> plans; ///< most recently used first
    zimg::Workspace workspace;
    Cancellation cancellation;

    explicit Filters(Cancellation given) : cancellation(std::move(given)) {}

    const Plan &planFor(const Picture &picture, const Placement &placement, const Picture &canvas) {
        const auto kept = std::find_if(plans.begin(), plans.end(), [&](const Plan &plan) {
            return plan.placement == placement && plan.picture == Shape(picture) && plan.canvas == Shape(canvas);
        });
        if (kept != plans.end()) {
            plans.splice(plans.begin(), plans, kept);
            return plans.front();
        }
        plans.push_front(makePlan(picture, placement, canvas));
        if (plans.size() > keptPlans)
            plans.pop_back();
        return plans.front();
    }

    void paintPlane(const PlanePlan &plan, const Picture &picture, const PlaneView &canvas) {
        const auto &[x, y] = plan.geometry;
        if (plan.geometry.empty())
            return;
        if (plan.sourcePlane < 0)
            return paint(neutral(canvas.depth), plan.geometry, canvas);
        const PlaneView window =
            zimg::planeOf(picture, plan.sourcePlane).part(x.windowFirst, y.windowFirst, x.windowCount, y.windowCount);
        if (plan.filter)
            return paint(plan.filter->run(window, workspace, cancellation), plan.geometry, canvas);
        const auto column = static_cast<int>(std::lround(x.regionBegin));
        const auto row = static_cast<int>(std::lround(y.regionBegin));
        paint(window.part(column, row, x.count, y.count), plan.geometry, canvas);
    }
};

Compositor::Compositor(Cancellation cancellation) : filters_(std::make_unique<Filters>(std::move(cancellation))) {}
Compositor::~Compositor() = default;
Compositor::Compositor(Compositor &&) noexcept = default;
Compositor &Compositor::operator=(Compositor &&) noexcept = default;

void Compositor::fillBlack(Picture &canvas) {
    for (int plane = 0; plane < canvas.format.planeCount(); ++plane)
        zimg::fillPlane(zimg::planeOf(canvas, plane), black(canvas, plane));
}

void Compositor::place(const Picture &picture, const Placement &placement, Picture &canvas) {
    if (picture.format.model != ColourModel::grey && picture.format.model != canvas.format.model)
        throw std::logic_error("pictures are placed on canvases of their own colour model");
    const Plan &plan = filters_->planFor(picture, placement, canvas);
    for (int plane = 0; plane < canvas.format.planeCount(); ++plane) {
        filters_->cancellation.check();
        filters_->paintPlane(plan.planes[static_cast<std::size_t>(plane)], picture, zimg::planeOf(canvas, plane));
    }
}

} // namespace lumetwin::media
