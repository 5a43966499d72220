// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/ColourTags.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace lumetwin::media {

enum class ColourModel { grey, yuv, rgb };

/// Layout of a planar picture's samples: one plane for grey, else three (Y, Cb, Cr or R, G, B). Samples of up to
/// 8 bits take one byte, deeper ones two bytes in the machine's order, in the low bits.
struct PictureFormat {
    ColourModel model = ColourModel::yuv;
    int depth = 8;        ///< bits a sample, 8 to 16
    int chromaShiftX = 1; ///< log2 of the horizontal subsampling of planes 1 and 2: 0 or 1 (2 for 4:1:1)
    int chromaShiftY = 1; ///< log2 of the vertical subsampling of planes 1 and 2

    bool operator==(const PictureFormat &) const = default;

    int planeCount() const { return model == ColourModel::grey ? 1 : 3; }
    int bytesPerSample() const { return depth > 8 ? 2 : 1; }
    int shiftX(int plane) const { return plane == 0 ? 0 : chromaShiftX; }
    int shiftY(int plane) const { return plane == 0 ? 0 : chromaShiftY; }
};

inline constexpr PictureFormat yuv420{ColourModel::yuv, 8, 1, 1};

/// A picture in memory, a value that shares its storage: copying it copies no samples, and the storage goes back
/// to where it came from (a pool, a decoder) with the last copy. Whoever fills a picture does so
/// before sharing it.
struct Picture {
    struct Plane {
        std::uint8_t *data = nullptr;
        std::ptrdiff_t stride = 0; ///< bytes from one row to the next
    };

    int width = 0;  ///< luma samples
    int height = 0; ///< luma rows
    PictureFormat format;
    ColourTags colour;
    std::array<Plane, 3> planes{};
    std::shared_ptr<void> storage;

    /// Samples in a row, and rows, of a plane (odd sizes round up).
    int planeWidth(int plane) const { return (width + (1 << format.shiftX(plane)) - 1) >> format.shiftX(plane); }
    int planeHeight(int plane) const { return (height + (1 << format.shiftY(plane)) - 1) >> format.shiftY(plane); }

    explicit operator bool() const { return planes[0].data != nullptr; }
};

/// A new picture with rows aligned for SIMD; sample values are undefined.
/// Throws std::length_error for sizes beyond 65535 a side or 2 GiB in all, std::bad_alloc without memory.
Picture makePicture(int width, int height, PictureFormat format, ColourTags colour = {});

/// The part of a picture with the given origin and size, sharing its storage. Origin in luma samples, a multiple of
/// the chroma subsampling.
Picture cropped(const Picture &picture, int x, int y, int width, int height);

/// Copies a picture onto one of the same format that is at least as large, repeating its last column and row there.
void copyExtended(const Picture &from, Picture &to);

/// Pictures of one size and format whose storage is used again once its last user lets go. Any thread may take one
/// or let go of one.
class PicturePool {
public:
    PicturePool(int width, int height, PictureFormat format, ColourTags colour = {});
    Picture take();

private:
    struct Store;
    std::shared_ptr<Store> store_;
};

} // namespace lumetwin::media
