// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/zimg/PlaneResampler.h"

#include "media/zimg/Zimg.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <list>
#include <stdexcept>

namespace lumetwin::media::zimg {

namespace {

// Catmull-Rom: sharp without the second ring of longer kernels, and exact for linear ramps.
constexpr double bicubicB = 0;
constexpr double bicubicC = 0.5;
constexpr double bicubicSupport = 2; // samples to each side at scale 1
constexpr std::size_t keptFilters = 24;
constexpr int largestSide = 65535;

/// A plane of our own with aligned rows that grows as needed and is used again.
class Scratch {
public:
    PlaneView take(int width, int height, int depth) {
        if (width < 1 || height < 1 || width > largestSide || height > largestSide)
            throw std::length_error("plane size out of range");
        const std::size_t row = static_cast<std::size_t>(width) * (depth > 8 ? 2 : 1);
        const std::size_t stride = (row + alignment - 1) / alignment * alignment;
        memory_.reserve(stride * static_cast<std::size_t>(height) + alignment);
        return {memory_.data(), static_cast<std::ptrdiff_t>(stride), width, height, depth};
    }

private:
    AlignedBytes memory_;
};

struct Geometry {
    int sourceWidth;
    int sourceHeight;
    int sourceDepth;
    Rect region;
    int width;
    int height;
    int depth;
    bool fullRange;

    bool operator==(const Geometry &) const = default;
};

zimg_image_format greyFormat(int width, int height, int depth, bool fullRange) {
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    format.width = static_cast<unsigned>(width);
    format.height = static_cast<unsigned>(height);
    format.pixel_type = depth > 8 ? ZIMG_PIXEL_WORD : ZIMG_PIXEL_BYTE;
    format.depth = static_cast<unsigned>(depth);
    format.color_family = ZIMG_COLOR_GREY;
    format.pixel_range = fullRange ? ZIMG_RANGE_FULL : ZIMG_RANGE_LIMITED;
    return format;
}

struct Filter {
    Geometry geometry;
    Graph graph;
    AlignedBytes working;
};

Filter makeFilter(const Geometry &geometry) {
    zimg_image_format source =
        greyFormat(geometry.sourceWidth, geometry.sourceHeight, geometry.sourceDepth, geometry.fullRange);
    source.active_region = {geometry.region.x, geometry.region.y, geometry.region.width, geometry.region.height};
    const zimg_image_format target = greyFormat(geometry.width, geometry.height, geometry.depth, geometry.fullRange);
    zimg_graph_builder_params parameters;
    zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
    parameters.resample_filter = ZIMG_RESIZE_BICUBIC;
    parameters.filter_param_a = bicubicB;
    parameters.filter_param_b = bicubicC;
    parameters.dither_type = geometry.depth < geometry.sourceDepth ? ZIMG_DITHER_ORDERED : ZIMG_DITHER_NONE;
    Filter filter{geometry, buildGraph(source, target, parameters), {}};
    filter.working.reserve(workingSize(filter.graph));
    return filter;
}

bool aligned(const PlaneView &plane) {
    return reinterpret_cast<std::uintptr_t>(plane.data) % alignment == 0 && plane.stride > 0 &&
           static_cast<std::size_t>(plane.stride) % alignment == 0;
}

void copyRow(const PlaneView &source, int row, const PlaneView &target, int margin) {
    const std::size_t bytes = static_cast<std::size_t>(source.bytes());
    const std::uint8_t *from = source.data + std::clamp(row - margin, 0, source.height - 1) * source.stride;
    std::uint8_t *to = target.data + row * target.stride;
    std::memcpy(to + static_cast<std::size_t>(margin) * bytes, from, static_cast<std::size_t>(source.width) * bytes);
    for (int column = 0; column < margin; ++column) {
        std::memcpy(to + static_cast<std::size_t>(column) * bytes, from, bytes);
        std::memcpy(to + static_cast<std::size_t>(margin + source.width + column) * bytes,
                    from + static_cast<std::size_t>(source.width - 1) * bytes, bytes);
    }
}

/// How far a filter reaches at a scale (source samples for one of the target).
int reach(double scale) { return static_cast<int>(std::ceil(bicubicSupport * std::max(scale, 1.0))) + 1; }

} // namespace

struct PlaneResampler::State {
    std::list<Filter> filters; ///< most recently used first
    Scratch input;
    Scratch output;

    Filter &filter(const Geometry &geometry) {
        const auto found = std::find_if(filters.begin(), filters.end(),
                                        [&](const Filter &kept) { return kept.geometry == geometry; });
        if (found != filters.end()) {
            filters.splice(filters.begin(), filters, found);
        } else {
            filters.push_front(makeFilter(geometry));
            if (filters.size() > keptFilters)
                filters.pop_back();
        }
        return filters.front();
    }

    /// The source as the library wants it: aligned, and with its edge repeated where the region reaches beyond it or the
    /// plane is smaller than the filter. Moves the region accordingly.
    PlaneView prepared(const PlaneView &source, Rect &region, int width, int height) {
        const int reachX = reach(region.width / width);
        const int reachY = reach(region.height / height);
        const double beyond = std::max({-region.x, -region.y, region.x + region.width - source.width,
                                        region.y + region.height - source.height, 0.0});
        const bool small = source.width < 2 * reachX + 2 || source.height < 2 * reachY + 2;
        if (beyond == 0 && !small && aligned(source))
            return source;
        const int margin = small || beyond > 0 ? static_cast<int>(std::ceil(beyond)) + std::max(reachX, reachY) : 0;
        const PlaneView copy = input.take(source.width + 2 * margin, source.height + 2 * margin, source.depth);
        for (int row = 0; row < copy.height; ++row)
            copyRow(source, row, copy, margin);
        region.x += margin;
        region.y += margin;
        return copy;
    }
};

PlaneResampler::PlaneResampler() : state_(std::make_unique<State>()) {}
PlaneResampler::~PlaneResampler() = default;

PlaneView PlaneResampler::resample(const PlaneView &source, const Rect &region, int width, int height, int depth,
                                   bool fullRange) {
    Rect moved = region;
    const PlaneView input = state_->prepared(source, moved, width, height);
    Filter &filter = state_->filter({input.width, input.height, input.depth, moved, width, height, depth, fullRange});
    const PlaneView output = state_->output.take(width, height, depth);
    process(filter.graph, {input.data, nullptr, nullptr}, {input.stride, 0, 0}, {output.data, nullptr, nullptr},
            {output.stride, 0, 0}, filter.working);
    return output;
}

} // namespace lumetwin::media::zimg
