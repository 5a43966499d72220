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

/// Memory shared by filters. It never shrinks.
class Workspace {
public:
    /// A plane with aligned rows, valid until the next call of the same function.
    PlaneView input(int width, int height, int depth) { return plane(input_, width, height, depth); }
    PlaneView output(int width, int height, int depth) { return plane(output_, width, height, depth); }
    AlignedBytes graph;

private:
    static PlaneView plane(AlignedBytes &memory, int width, int height, int depth);

    AlignedBytes input_;
    AlignedBytes output_;
};

/// The parameters of a filter for planes of one size.
struct Resampling {
    int sourceWidth = 0;
    int sourceHeight = 0;
    int sourceDepth = 8;
    Rect region; ///< in the source's samples; outside, the source is mirrored
    int width = 0;
    int height = 0;
    int depth = 8;
    bool fullRange = false;
};

/// Scales a rectangle of a plane to an integer size in samples.
class PlaneFilter {
public:
    /// Maps each possible source value to its value with 16 bits. A source is converted by this before it is scaled.
    using Table = std::vector<std::uint16_t>;

    /// Throws std::length_error for sizes out of range, std::runtime_error when the library refuses.
    explicit PlaneFilter(const Resampling &resampling, Table table = {});

    /// The result is in the workspace.
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
