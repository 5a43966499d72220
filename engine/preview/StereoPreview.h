// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/StereoLayout.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace lumetwin {

/// What is waited for. Of films, it chooses the frame. Each is faster than the one before.
enum class PreviewDetail {
    exact, ///< the frame at the position
    near,  ///< a random access picture near it
    soon,  ///< the same; of spatial photos and films whose pictures take long to decode one eye alone, shown for both
};

/// What a preview asks for.
struct PreviewRequest {
    /// How the eyes lie in a file that is not spatial; a spatial file knows it itself.
    StereoLayout layout;
    /// Films: where, as a share of the duration, 0 to 1.
    double position = 0;
    PreviewDetail detail = PreviewDetail::near;
    /// Upper limits of one eye's picture in pixels; the picture is reduced to fit, with its shape kept, never enlarged.
    int maximumWidth = 0;
    int maximumHeight = 0;
};

/// What a preview consists of, besides its pixels.
struct PreviewFacts {
    int width = 0; ///< of one eye's picture as delivered
    int height = 0;
    bool hasBothEyes = false; ///< false: only one picture (no second eye, or a layout that cannot be read)
    bool isFlat = false;      ///< one eye is shown for both, because the other one takes long to decode
    /// The size in which an eye of the source is shown (a squeezed one with its true shape), in pixels: what the
    /// converters take as one eye.
    std::int64_t eyeWidth = 0;
    std::int64_t eyeHeight = 0;
    /// Width of a pixel of that eye divided by its height. Pixels of the delivered picture are square.
    double pixelAspect = 1;
    double seconds = 0;   ///< films: time of the frame since the beginning of the video
    double duration = 0;  ///< films: seconds, 0 if unknown
    double frameRate = 0; ///< films: frames per second, 0 if unknown
};

/// One eye's picture: rows of 4 bytes per pixel (blue, green, red, 255), sRGB, without padding. Copies share the
/// pixels.
struct PreviewPicture {
    int width = 0;
    int height = 0;
    std::shared_ptr<const std::vector<std::uint8_t>> pixels;

    bool isEmpty() const { return !pixels || width < 1 || height < 1; }
    const std::uint8_t *row(int y) const { return pixels->data() + static_cast<std::size_t>(y) * width * 4; }
};

/// A preview. Left and right are the eyes after the file's own order was applied (where it has the right eye first,
/// that is put right), before the user's swap.
struct StereoPreview : PreviewFacts {
    PreviewPicture left;
    PreviewPicture right; ///< empty without both eyes
};

} // namespace lumetwin
