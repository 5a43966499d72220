// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/zimg/PlaneFilter.h"

#include <cstring>
#include <stdexcept>

namespace lumetwin::media::zimg {

namespace {

// Catmull-Rom: sharp without the second ring of longer kernels, and exact for linear ramps.
constexpr double bicubicB = 0;
constexpr double bicubicC = 0.5;

constexpr int largestSide = 65535;

zimg_image_format greyFormat(int width, int height, int depth, bool fullRange) {
    if (width < 1 || height < 1 || width > largestSide || height > largestSide)
        throw std::length_error("plane size out of range");
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

bool isAligned(const PlaneView &plane) {
    return reinterpret_cast<std::uintptr_t>(plane.data) % alignment == 0 && plane.stride > 0 &&
           static_cast<std::size_t>(plane.stride) % alignment == 0;
}

template <typename Sample>
void convertRow(const Sample *source, std::uint16_t *target, int width, const PlaneFilter::Table &table) {
    for (int column = 0; column < width; ++column) {
        const std::size_t value = source[column];
        target[column] = value < table.size() ? table[value] : table.back();
    }
}

} // namespace

PlaneView Workspace::plane(AlignedBytes &memory, int width, int height, int depth) {
    const std::size_t row = static_cast<std::size_t>(width) * (depth > 8 ? 2 : 1);
    const std::size_t stride = (row + alignment - 1) / alignment * alignment;
    memory.reserve(stride * static_cast<std::size_t>(height) + alignment);
    return {memory.data(), static_cast<std::ptrdiff_t>(stride), width, height, depth};
}

PlaneFilter::PlaneFilter(const Resampling &resampling, Table table)
    : table_(std::move(table)), width_(resampling.width), height_(resampling.height), depth_(resampling.depth) {
    const int sourceDepth = table_.empty() ? resampling.sourceDepth : 16;
    const bool fullRange = resampling.fullRange;
    const Rect &region = resampling.region;
    zimg_image_format source = greyFormat(resampling.sourceWidth, resampling.sourceHeight, sourceDepth, fullRange);
    source.active_region = {region.x, region.y, region.width, region.height};
    const zimg_image_format target = greyFormat(width_, height_, depth_, fullRange);
    zimg_graph_builder_params parameters;
    zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
    parameters.resample_filter = ZIMG_RESIZE_BICUBIC;
    parameters.filter_param_a = bicubicB;
    parameters.filter_param_b = bicubicC;
    parameters.dither_type = depth_ < sourceDepth ? ZIMG_DITHER_ORDERED : ZIMG_DITHER_NONE;
    graph_ = buildGraph(source, target, parameters);
    workingSize_ = workingSize(graph_);
}

PlaneView PlaneFilter::prepared(const PlaneView &source, Workspace &workspace) const {
    if (table_.empty() && isAligned(source))
        return source;
    const PlaneView copy = workspace.input(source.width, source.height, table_.empty() ? source.depth : 16);
    for (int row = 0; row < source.height; ++row) {
        const std::uint8_t *from = source.data + row * source.stride;
        std::uint8_t *to = copy.data + row * copy.stride;
        if (table_.empty())
            std::memcpy(to, from, static_cast<std::size_t>(source.width) * static_cast<std::size_t>(source.bytes()));
        else if (source.depth > 8)
            convertRow(reinterpret_cast<const std::uint16_t *>(from), reinterpret_cast<std::uint16_t *>(to),
                       source.width, table_);
        else
            convertRow(from, reinterpret_cast<std::uint16_t *>(to), source.width, table_);
    }
    return copy;
}

PlaneView PlaneFilter::run(const PlaneView &source, Workspace &workspace, const Cancellation &cancellation) const {
    const PlaneView input = prepared(source, workspace);
    const PlaneView output = workspace.output(width_, height_, depth_);
    workspace.graph.reserve(workingSize_);
    process(graph_, {input.data, nullptr, nullptr}, {input.stride, 0, 0}, {output.data, nullptr, nullptr},
            {output.stride, 0, 0}, workspace.graph, cancellation);
    return output;
}

} // namespace lumetwin::media::zimg
