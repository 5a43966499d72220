// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/EyePair.h"
#include "media/InputFile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace lumetwin::media {

/// The intrinsics of a pinhole camera, in pixels of the image before rotation and mirroring. The origin is the top left
/// corner.
struct PixelIntrinsics {
    double focalLengthX = 0;
    double focalLengthY = 0;
    double principalPointX = 0;
    double principalPointY = 0;
    double skew = 0;
};

/// The item property `cmin` (ISO/IEC 23008-12), also as the `uuid` property of platform-written files.
struct CameraIntrinsics {
    double focalLengthX = 0;            ///< in image widths
    double principalPointX = 0;         ///< in image widths
    double principalPointY = 0;         ///< in image heights
    std::optional<double> focalLengthY; ///< in image heights; nullopt: same number of pixels as focalLengthX
    double skew = 0;                    ///< pixels

    /// The same in pixels, for an image with this coded size (`ispe`).
    PixelIntrinsics inPixels(double width, double height) const;
};

/// One transformation: `irot`, `imir` or `clap`. They are applied in the order of the list.
struct HeifTransform {
    enum class Kind { rotate, mirror, crop };
    Kind kind = Kind::rotate;
    int quarterTurns = 0;                   ///< rotate: anticlockwise, 0 to 3
    bool mirrorsVertically = false;         ///< mirror: top becomes bottom, else left becomes right
    std::array<std::int64_t, 8> aperture{}; ///< crop: width, height, horizontal and vertical offset of the centres,
                                            ///< each numerator and denominator
};

/// An image that a viewer would show: not hidden, not a thumbnail, not an auxiliary image, not a tile of a grid.
struct HeifImage {
    std::uint32_t item = 0;   ///< the item id in the file, for decoders
    std::uint32_t coding = 0; ///< the type of the items with its coded samples: `hvc1`, `av01`, …
    bool encrypted = false;
    std::uint32_t codedWidth = 0; ///< from `ispe`, before all transformations; 0 when unknown
    std::uint32_t codedHeight = 0;
    std::uint32_t width = 0; ///< after `clap`, before rotation: the size to which the stereo values refer
    std::uint32_t height = 0;
    std::uint32_t shownWidth = 0; ///< after all transformations: the size of the decoded picture
    std::uint32_t shownHeight = 0;
    std::vector<HeifTransform> transforms;
    std::optional<CameraIntrinsics> intrinsics;
    std::optional<std::array<std::int32_t, 3>> position; ///< position of the camera in micrometres, x to the right
    std::optional<std::int32_t> disparityAdjustment;     ///< ten-thousandths of the image width

    /// The intrinsics in pixels of an image of the size `width` × `height`.
    std::optional<PixelIntrinsics> pixelIntrinsics() const;
};

/// A group of the type `ster` (ISO/IEC 23008-12).
struct HeifStereoGroup {
    std::uint32_t id = 0;
    std::vector<std::uint32_t> entities; ///< ids from the file: left, right
    /// The indexes of the images of the first two ids; nullopt when there is no such id or image.
    std::optional<std::size_t> left;
    std::optional<std::size_t> right;
};

/// The contents of the `meta` box of a HEIF file (ISO/IEC 23008-12).
struct HeifFile {
    std::vector<HeifImage> images;             ///< in the order of the file's item list
    std::optional<std::size_t> primary;        ///< index of the primary image, if it is one of them
    std::vector<HeifStereoGroup> stereoGroups; ///< in the file's order
    bool hasMovie = false;                     ///< the file also contains a movie or an image sequence
    bool hasGainMap = false;                   ///< one of its items makes an image brighter on HDR screens
    bool hasDepthMap = false;                  ///< one of its auxiliary images contains distances or disparities

    /// Indexes of the images of the first stereo group. A group that lacks one of them means the file's first two
    /// images. Nothing without a group, and for files of fewer than two images.
    std::optional<EyePair<std::size_t>> stereoEyes() const;
    /// The disparity adjustment of these images: of the left one, otherwise of the right one.
    std::optional<std::int32_t> stereoDisparityAdjustment() const;
};

/// Reads headers only, without decoding. Throws MediaError when the file is not a HEIF file, contains only an image
/// sequence, is damaged, or exceeds the limits.
HeifFile readHeifFile(const InputFile &file);

} // namespace lumetwin::media
