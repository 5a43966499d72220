// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/Picture.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <stdexcept>
#include <vector>

#include <sys/mman.h>

namespace lumetwin::media {

namespace {

constexpr std::size_t alignment = 64; // bytes of the widest SIMD registers in use
constexpr int maximumSide = 65535;
constexpr std::size_t maximumBytes = std::size_t{2} << 30;

struct Layout {
    std::array<std::size_t, 3> offset{};
    std::array<std::ptrdiff_t, 3> stride{};
    std::size_t bytes = 0;
};

Layout layoutOf(const Picture &shape) {
    if (shape.width < 1 || shape.height < 1 || shape.width > maximumSide || shape.height > maximumSide)
        throw std::length_error("picture size out of range");
    Layout layout;
    for (int plane = 0; plane < shape.format.planeCount(); ++plane) {
        const auto row = static_cast<std::size_t>(shape.planeWidth(plane)) * shape.format.bytesPerSample();
        const std::size_t stride = (row + alignment - 1) / alignment * alignment;
        layout.offset[plane] = layout.bytes;
        layout.stride[plane] = static_cast<std::ptrdiff_t>(stride);
        layout.bytes += stride * static_cast<std::size_t>(shape.planeHeight(plane));
    }
    // SIMD code may read up to one register beyond the last sample.
    layout.bytes += alignment;
    if (layout.bytes > maximumBytes)
        throw std::length_error("picture too large");
    return layout;
}

using Block = std::unique_ptr<std::uint8_t, void (*)(std::uint8_t *)>;

Block allocate(std::size_t bytes) {
    // The system allocates large blocks in large pages on request, which is much faster than many small pages.
    constexpr std::size_t largePage = std::size_t{2} << 20;
    const bool large = bytes >= 2 * largePage;
    const std::size_t edge = large ? largePage : alignment;
    auto *memory = static_cast<std::uint8_t *>(std::aligned_alloc(edge, (bytes + edge - 1) / edge * edge));
    if (!memory)
        throw std::bad_alloc();
    if (large)
        madvise(memory, bytes, MADV_HUGEPAGE);
    return {memory, [](std::uint8_t *block) { std::free(block); }};
}

Picture shapeOf(int width, int height, PictureFormat format, ColourTags colour) {
    Picture picture;
    picture.width = width;
    picture.height = height;
    picture.format = format;
    picture.colour = colour;
    return picture;
}

void attach(Picture &picture, const Layout &layout, std::shared_ptr<std::uint8_t> memory) {
    for (int plane = 0; plane < picture.format.planeCount(); ++plane)
        picture.planes[plane] = {memory.get() + layout.offset[plane], layout.stride[plane]};
    picture.storage = std::move(memory);
}

} // namespace

Picture makePicture(int width, int height, PictureFormat format, ColourTags colour) {
    Picture picture = shapeOf(width, height, format, colour);
    const Layout layout = layoutOf(picture);
    attach(picture, layout, std::shared_ptr<std::uint8_t>(allocate(layout.bytes)));
    return picture;
}

Picture cropped(const Picture &picture, int x, int y, int width, int height) {
    Picture part = picture;
    part.width = width;
    part.height = height;
    for (int plane = 0; plane < picture.format.planeCount(); ++plane)
        part.planes[plane].data +=
            (y >> picture.format.shiftY(plane)) * picture.planes[plane].stride +
            static_cast<std::ptrdiff_t>(x >> picture.format.shiftX(plane)) * picture.format.bytesPerSample();
    return part;
}

void copyExtended(const Picture &from, Picture &to) {
    const auto bytes = static_cast<std::size_t>(from.format.bytesPerSample());
    for (int plane = 0; plane < from.format.planeCount(); ++plane) {
        const std::size_t width = static_cast<std::size_t>(from.planeWidth(plane)) * bytes;
        const std::size_t fullWidth = static_cast<std::size_t>(to.planeWidth(plane)) * bytes;
        for (int row = 0; row < to.planeHeight(plane); ++row) {
            const int sourceRow = std::min(row, from.planeHeight(plane) - 1);
            const std::uint8_t *source = from.planes[plane].data + sourceRow * from.planes[plane].stride;
            std::uint8_t *target = to.planes[plane].data + row * to.planes[plane].stride;
            std::memcpy(target, source, width);
            for (std::size_t column = width; column < fullWidth; column += bytes)
                std::memcpy(target + column, source + width - bytes, bytes);
        }
    }
}

struct PicturePool::Store {
    Picture shape;
    Layout layout;
    std::mutex mutex;
    std::vector<Block> spare;

    Block take() {
        const std::lock_guard lock(mutex);
        if (spare.empty())
            return allocate(layout.bytes);
        Block block = std::move(spare.back());
        spare.pop_back();
        return block;
    }

    void giveBack(Block block) {
        const std::lock_guard lock(mutex);
        spare.push_back(std::move(block));
    }
};

PicturePool::PicturePool(int width, int height, PictureFormat format, ColourTags colour)
    : store_(std::make_shared<Store>()) {
    store_->shape = shapeOf(width, height, format, colour);
    store_->layout = layoutOf(store_->shape);
}

Picture PicturePool::take() {
    Block block = store_->take();
    const auto release = block.get_deleter();
    std::shared_ptr<std::uint8_t> memory(
        block.release(), [store = store_, release](std::uint8_t *bytes) { store->giveBack(Block(bytes, release)); });
    Picture picture = store_->shape;
    attach(picture, store_->layout, std::move(memory));
    return picture;
}

} // namespace lumetwin::media
