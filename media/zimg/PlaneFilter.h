// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Placement.h"
#include "media/zimg/Zimg.h"

#include <cstdint>
#include <vector>

namespace lumetwin::media::zimg {

/// One plane of samples: 8 bits in a byte, more in two.
struct PlaneView {
    std::uint8_t *data = nullptr;
    std::ptrdiff_t stride = 0;
    int width = 0;
    int height = 0;
    int depth = 8;

    int bytes() const { return depth > 8 ? 2 : 1; }
    PlaneView part(int x, int y, int partWidth, int partHeight) const {
        return {data + y * stride + static_cast<std::ptrdiff_t>(x) * bytes(), stride, partWidth, partHeight, depth};
    }
};

/// Memory that filters share; it only grows.
class Workspace {
public:
    /// Planes with aligned rows, valid until the next one is taken from the same place.
    PlaneView input(int width, int height, int depth) { return plane(input_, width, height, depth); }
    PlaneView output(int width, int height, int depth) { return plane(output_, width, height, depth); }
    AlignedBytes graph;

private:
    static PlaneView plane(AlignedBytes &memory, int width, int height, int depth);

    AlignedBytes input_;
    AlignedBytes output_;
};

/// What a filter does to planes of one size.
struct Resampling {
    int sourceWidth = 0;
    int sourceHeight = 0;
    int sourceDepth = 8;
    Rect region; ///< in the source's samples; its surroundings are those of the source mirrored
    int width = 0;
    int height = 0;
    int depth = 8;
    bool fullRange = false;
};

/// Scales a rectangle of planes of one size to a whole number of samples.
class PlaneFilter {
public:
    /// Values of the source at 16 bits, for each that it can have: a source is converted so before it is scaled.
    using Table = std::vector<std::uint16_t>;

    /// Throws std::length_error for sizes out of range, std::runtime_error when the library refuses.
    explicit PlaneFilter(const Resampling &resampling, Table table = {});

    /// The result lies in the workspace.
    PlaneView run(const PlaneView &source, Workspace &workspace, const Cancellation &cancellation = {}) const;

private:
    PlaneView prepared(const PlaneView &source, Workspace &workspace) const;

    Table table_;
    Graph graph_;
    std::size_t workingSize_ = 0;
    int width_;
    int height_;
    int depth_;
};

} // namespace lumetwin::media::zimg
