// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Cancellation.h"

#include <zimg.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace lumetwin::media::zimg {

// The alignment of pointers and strides for the library's widest SIMD code.
inline constexpr std::size_t alignment = 64;

/// Aligned memory that never shrinks.
class AlignedBytes {
public:
    void reserve(std::size_t bytes) {
        if (bytes <= size_)
            return;
        memory_.reset(static_cast<std::uint8_t *>(::operator new (bytes, std::align_val_t{alignment})));
        size_ = bytes;
    }
    std::uint8_t *data() const { return memory_.get(); }

private:
    struct Free {
        void operator()(std::uint8_t *memory) const { ::operator delete (memory, std::align_val_t{alignment}); }
    };
    std::unique_ptr<std::uint8_t, Free> memory_;
    std::size_t size_ = 0;
};

struct GraphDeleter {
    void operator()(zimg_filter_graph *graph) const { zimg_filter_graph_free(graph); }
};
using Graph = std::unique_ptr<zimg_filter_graph, GraphDeleter>;

/// Throws std::runtime_error with the library's message.
Graph buildGraph(const zimg_image_format &source, const zimg_image_format &target,
                 const zimg_graph_builder_params &parameters);

std::size_t workingSize(const Graph &graph);

using Planes = std::array<std::uint8_t *, 3>;
using Strides = std::array<std::ptrdiff_t, 3>;

/// Runs a graph over whole planes. Throws std::runtime_error, or Cancelled soon after cancellation.
void process(const Graph &graph, const Planes &source, const Strides &sourceStrides, const Planes &target,
             const Strides &targetStrides, const AlignedBytes &working, const Cancellation &cancellation);

} // namespace lumetwin::media::zimg
