// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/zimg/Zimg.h"

#include <stdexcept>
#include <string>

namespace lumetwin::media::zimg {

namespace {

[[noreturn]] void fail() {
    char words[256] = {};
    zimg_get_last_error(words, sizeof words);
    throw std::runtime_error(std::string("pixel conversion: ") + words);
}

/// Called as rows are done. A result other than 0 stops the work.
int stops(void *user, unsigned, unsigned, unsigned) {
    return static_cast<const Cancellation *>(user)->requested() ? 1 : 0;
}

} // namespace

Graph buildGraph(const zimg_image_format &source, const zimg_image_format &target,
                 const zimg_graph_builder_params &parameters) {
    Graph graph(zimg_filter_graph_build(&source, &target, &parameters));
    if (!graph)
        fail();
    return graph;
}

std::size_t workingSize(const Graph &graph) {
    std::size_t bytes = 0;
    if (zimg_filter_graph_get_tmp_size(graph.get(), &bytes) != ZIMG_ERROR_SUCCESS)
        fail();
    return bytes + alignment;
}

void process(const Graph &graph, const Planes &source, const Strides &sourceStrides, const Planes &target,
             const Strides &targetStrides, const AlignedBytes &working, const Cancellation &cancellation) {
    zimg_image_buffer_const from{};
    zimg_image_buffer to{};
    from.version = to.version = ZIMG_API_VERSION;
    for (std::size_t plane = 0; plane < 3; ++plane) {
        from.plane[plane] = {source[plane], sourceStrides[plane], ZIMG_BUFFER_MAX};
        to.plane[plane] = {target[plane], targetStrides[plane], ZIMG_BUFFER_MAX};
    }
    auto *user = const_cast<Cancellation *>(&cancellation);
    if (zimg_filter_graph_process(graph.get(), &from, &to, working.data(), nullptr, nullptr, stops, user) ==
        ZIMG_ERROR_SUCCESS)
        return;
    cancellation.check();
    fail();
}

} // namespace lumetwin::media::zimg
