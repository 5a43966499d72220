// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/OutputFile.h"
#include "media/bmff/BoxWriter.h"
#include "media/heif/HeifFile.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumetwin::media::heif {

using bmff::Bytes;

/// `colr` of type `nclx`: code points of ITU-T H.273.
struct HeifColour {
    int primaries = 2;
    int transfer = 2;
    int matrix = 2;
    bool fullRange = false;
};

/// The camera of one eye.
struct Camera {
    double focalLength = 0;                 ///< pixels; may be infinite. With NaN no intrinsics are written.
    std::array<double, 2> principalPoint{}; ///< pixels
    std::array<std::int32_t, 3> position{}; ///< micrometres, x to the right
};

/// One image, coded as one HEVC picture or as a grid of HEVC pictures of equal size.
struct CodedImage {
    std::uint32_t width = 0; ///< display size
    std::uint32_t height = 0;
    /// The decoded size of each coded picture. A single picture may be larger than the image; then the rest is cut off
    /// at the right and bottom. In a grid, columns × tileWidth is at least the image's width, and likewise for the
    /// height.
    std::uint32_t tileWidth = 0;
    std::uint32_t tileHeight = 0;
    std::uint32_t columns = 1; ///< at most 256
    std::uint32_t rows = 1;
    /// Row by row; each has the NAL units of one picture's slices, without start codes.
    std::vector<std::vector<Bytes>> tiles;
    Bytes configuration; ///< `hvcC`, the same for all tiles
    int bitDepth = 8;
    int channels = 3;
    Bytes colourProfile;              ///< ICC; may be empty
    std::optional<HeifColour> colour; ///< written with or without a profile
    Bytes exif;                       ///< begins with the TIFF header; may be empty
    std::string xmp;                  ///< a packet; may be empty
    std::optional<Camera> camera;
};

/// Writes a file with one image. Throws MediaError for a system error, std::invalid_argument for inconsistent contents
/// or more than 4 GiB.
void writeHeif(const OutputFile &file, const CodedImage &image);

/// Writes a stereo pair in the form of platform-written files, the left image first and primary. Both images need a
/// camera. disparityAdjustment: ten-thousandths of the image width, saturated to 32 bits. Otherwise as above.
void writeStereoHeif(const OutputFile &file, const CodedImage &left, const CodedImage &right,
                     std::int64_t disparityAdjustment);

} // namespace lumetwin::media::heif
