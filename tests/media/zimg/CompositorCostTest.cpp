// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/Compositor.h"
#include "tests/support/Drawing.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <thread>

namespace {

std::atomic<std::size_t> allocations{0};

void *counted(std::size_t bytes, std::size_t alignment) {
    ++allocations;
    void *memory = std::aligned_alloc(alignment, (bytes + alignment - 1) / alignment * alignment);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

} // namespace

void *operator new(std::size_t bytes) {
    return counted(bytes + 1, alignof(std::max_align_t));
}
void *operator new(std::size_t bytes, std::align_val_t alignment) {
    return counted(bytes + 1, static_cast<std::size_t>(alignment));
}
void operator delete(void *memory) noexcept {
    std::free(memory);
}
void operator delete(void *memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void *memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void *memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}

namespace lumetwin::media {
namespace {

using namespace test;

/// Both eyes on one frame, each at a fractional place.
void compose(Compositor &compositor, const Picture &left, const Picture &right, Picture &canvas) {
    compositor.place(left, {all(left), {0, 10.25, 101, 80}, {0, 0, 101, 100}, true}, canvas);
    compositor.place(right, {all(right), {101, 10.25, 101, 80}, {101, 0, 101, 100}}, canvas);
}

TEST(CompositorCost, allocatesNothingOnceAGeometryIsKnown) {
    for (const PictureFormat format : {yuv420, yuv420ten, yuv444}) {
        const Picture left = noise(160, 90, format, 1);
        const Picture right = noise(160, 90, format, 2);
        Picture canvas = black(202, 100);
        Compositor compositor;
        compose(compositor, left, right, canvas);
        const std::size_t before = allocations;
        for (int frame = 0; frame < 10; ++frame)
            compose(compositor, left, right, canvas);
        EXPECT_EQ(allocations - before, 0u);
    }
}

TEST(CompositorCost, forgetsGeometriesThatAreNotUsed) {
    // Changing geometries must neither fail nor change what comes out.
    const Picture eye = noise(64, 64, yuv420);
    Compositor compositor;
    Picture first = black(64, 64);
    compositor.place(eye, {all(eye), {0, 0, 40, 40}, all(eye)}, first);
    for (int size = 1; size < 64; ++size) {
        Picture canvas = black(64, 64);
        compositor.place(eye, {all(eye), {0, 0, 64.0 - size, 64}, all(eye)}, canvas);
    }
    Picture again = black(64, 64);
    compositor.place(eye, {all(eye), {0, 0, 40, 40}, all(eye)}, again);
    eachSample(first,
               [&](int plane, int x, int y) { ASSERT_EQ(sample(first, plane, x, y), sample(again, plane, x, y)); });
}

TEST(CompositorCost, tellsPicturesOfOneSizeApart) {
    // A kept filter must not serve a picture whose range or chroma location differs.
    const auto placed = [](Compositor &compositor, ColourTags from) {
        const Picture eye = drawn(
            64, 64, yuv420, [](int, int x, int y) { return x * 3 + y; }, from);
        Picture canvas = black(64, 64, yuv420, tagged(ColourRange::limited, ChromaLocation::left));
        compositor.place(eye, {all(eye), all(eye), all(eye)}, canvas);
        return canvas;
    };
    Compositor shared;
    for (const ColourTags &from : {tagged(ColourRange::limited), tagged(ColourRange::full),
                                   tagged(ColourRange::limited, ChromaLocation::centre)}) {
        Compositor fresh;
        const Picture expected = placed(fresh, from);
        const Picture actual = placed(shared, from);
        eachSample(expected, [&](int plane, int x, int y) {
            ASSERT_EQ(sample(actual, plane, x, y), sample(expected, plane, x, y));
        });
    }
}

TEST(CompositorCost, worksOnSeveralThreads) {
    const Picture left = noise(160, 90, yuv420ten, 1);
    const Picture right = noise(160, 90, yuv420ten, 2);
    Compositor compositor;
    Picture expected = black(202, 100);
    compose(compositor, left, right, expected);
    std::atomic<int> differences{0};
    const auto work = [&] {
        Compositor own;
        for (int frame = 0; frame < 20; ++frame) {
            Picture canvas = black(202, 100);
            compose(own, left, right, canvas);
            eachSample(canvas, [&](int plane, int x, int y) {
                if (sample(canvas, plane, x, y) != sample(expected, plane, x, y))
                    ++differences;
            });
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
    EXPECT_EQ(differences, 0);
}

TEST(CompositorCost, mayBeMoved) {
    const Picture eye = noise(64, 64, yuv420);
    Compositor first;
    Picture canvas = black(64, 64);
    first.place(eye, {all(eye), all(eye), all(eye)}, canvas);
    Compositor second = std::move(first);
    Picture again = black(64, 64);
    second.place(eye, {all(eye), all(eye), all(eye)}, again);
    EXPECT_EQ(sample(again, 0, 9, 9), sample(eye, 0, 9, 9));
}

} // namespace
} // namespace lumetwin::media
