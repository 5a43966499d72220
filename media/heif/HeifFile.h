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

/// A pinhole camera's intrinsics in pixels of the image before rotation and mirroring, the origin at its top left.
struct PixelIntrinsics {
    double focalLengthX = 0;
    double focalLengthY = 0;
    double principalPointX = 0;
    double principalPointY = 0;
    double skew = 0;
};

/// The item property `cmin` (ISO/IEC 23008-12), also in the form of a `uuid` property that platform-written files have.
struct CameraIntrinsics {
    double focalLengthX = 0;            ///< in image widths
    double principalPointX = 0;         ///< in image widths
    double principalPointY = 0;         ///< in image heights
    std::optional<double> focalLengthY; ///< in image heights; absent: as many pixels as focalLengthX
    double skew = 0;                    ///< pixels

    /// For an image whose coded (`ispe`) size is this.
    PixelIntrinsics inPixels(double width, double height) const;
};

/// One step of `irot`, `imir` and `clap`, which apply in the order of the list.
struct HeifTransform {
    enum class Kind { rotate, mirror, crop };
    Kind kind = Kind::rotate;
    int quarterTurns = 0;                   ///< rotate: anticlockwise, 0 to 3
    bool mirrorsVertically = false;         ///< mirror: top becomes bottom, else left becomes right
    std::array<std::int64_t, 8> aperture{}; ///< crop: width, height, horizontal and vertical offset of the centres,
                                            ///< each numerator and denominator
};

/// An image that a viewer would list: not hidden, no thumbnail, no auxiliary image, no part of a grid.
struct HeifImage {
    std::uint32_t item = 0;   ///< the item's id in the file, as decoders want it
    std::uint32_t coding = 0; ///< the type of the items that its samples are coded in: `hvc1`, `av01`, …
    bool encrypted = false;
    std::uint32_t codedWidth = 0; ///< of `ispe`: before all transformations; 0 where the file does not say
    std::uint32_t codedHeight = 0;
    std::uint32_t width = 0; ///< after `clap`, before rotation: the pixel size that the stereo values refer to
    std::uint32_t height = 0;
    std::uint32_t shownWidth = 0; ///< after all transformations: the size of the decoded picture
    std::uint32_t shownHeight = 0;
    std::vector<HeifTransform> transforms;
    std::optional<CameraIntrinsics> intrinsics;
    std::optional<std::array<std::int32_t, 3>> position; ///< of the camera, micrometres: x to the right
    std::optional<std::int32_t> disparityAdjustment;     ///< ten-thousandths of the image width

    /// In pixels of the image of the size `width` × `height`.
    std::optional<PixelIntrinsics> pixelIntrinsics() const;
};

/// A group of the type `ster` (ISO/IEC 23008-12).
struct HeifStereoGroup {
    std::uint32_t id = 0;
    std::vector<std::uint32_t> entities; ///< ids as the file has them: left, right
    /// The images that the first two ids stand for, as indexes; absent where there is no such id or no such image.
    std::optional<std::size_t> left;
    std::optional<std::size_t> right;
};

/// What the `meta` box of a HEIF file says (ISO/IEC 23008-12).
struct HeifFile {
    std::vector<HeifImage> images;             ///< in the order in which the file announces its items
    std::optional<std::size_t> primary;        ///< index of the primary image, where it is one of them
    std::vector<HeifStereoGroup> stereoGroups; ///< in the file's order
    bool hasMovie = false;                     ///< there is a film or an image sequence in it, too
    bool hasGainMap = false;                   ///< one of its items makes an image brighter on HDR screens
    bool hasDepthMap = false;                  ///< one of its auxiliary images holds distances or disparities

    /// Indexes of the images of the first stereo group. A group that lacks one of them means the file's first two
    /// images. Nothing without a group, and for files of fewer than two images.
    std::optional<EyePair<std::size_t>> stereoEyes() const;
    /// The disparity adjustment of those images: the left one's, else the right one's.
    std::optional<std::int32_t> stereoDisparityAdjustment() const;
};

/// Reads headers only and decodes nothing. Throws MediaError when the file is no HEIF file, an image sequence and
/// nothing else, damaged, or beyond the limits.
HeifFile readHeifFile(const InputFile &file);

} // namespace lumetwin::media
