// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/ColourTags.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace lumetwin::media {

enum class ColourModel { grey, yuv, rgb };

/// The layout of a planar picture's samples: one plane for grey, otherwise three (Y, Cb, Cr or R, G, B). Samples of up
/// to 8 bits use one byte, deeper ones two bytes in native byte order, in the low bits.
struct PictureFormat {
    ColourModel model = ColourModel::yuv;
    int depth = 8;        ///< bits per sample, 8 to 16
    int chromaShiftX = 1; ///< log2 of the horizontal subsampling of planes 1 and 2: 0 or 1 (2 for 4:1:1)
    int chromaShiftY = 1; ///< log2 of the vertical subsampling of planes 1 and 2

    bool operator==(const PictureFormat &) const = default;

    int planeCount() const { return model == ColourModel::grey ? 1 : 3; }
    int bytesPerSample() const { return depth > 8 ? 2 : 1; }
    int shiftX(int plane) const { return plane == 0 ? 0 : chromaShiftX; }
    int shiftY(int plane) const { return plane == 0 ? 0 : chromaShiftY; }
};

inline constexpr PictureFormat yuv420{ColourModel::yuv, 8, 1, 1};

/// A picture in memory. Copies share the storage and copy no samples. When the last copy is gone, the storage returns
/// to its origin (a pool, a decoder). Fill a picture before sharing it.
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

    /// The number of samples per row and of rows of a plane (odd sizes are rounded up).
    int planeWidth(int plane) const { return (width + (1 << format.shiftX(plane)) - 1) >> format.shiftX(plane); }
    int planeHeight(int plane) const { return (height + (1 << format.shiftY(plane)) - 1) >> format.shiftY(plane); }

    explicit operator bool() const { return planes[0].data != nullptr; }
};

/// Creates a picture with rows aligned for SIMD. Sample values are undefined. Throws std::length_error for more than
/// 65535 samples on a side or 2 GiB in total, std::bad_alloc without memory.
Picture makePicture(int width, int height, PictureFormat format, ColourTags colour = {});

/// A part of a picture that shares its storage. The origin is in luma samples and must be a multiple of the chroma
/// subsampling.
Picture cropped(const Picture &picture, int x, int y, int width, int height);

/// Copies a picture to one of the same format that is at least as large. Its last column and row are repeated to fill
/// it.
void copyExtended(const Picture &from, Picture &to);

/// Creates pictures of one size and format and reuses their storage when their last user releases them. May be used on
/// any thread.
class PicturePool {
public:
    PicturePool(int width, int height, PictureFormat format, ColourTags colour = {});
    Picture take();

private:
    struct Store;
    std::shared_ptr<Store> store_;
};

} // namespace lumetwin::media
