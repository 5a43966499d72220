// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"
#include "media/heif/HeifWriter.h"

namespace lumetwin::media::images {

/// How a picture is coded that is larger than one HEVC picture may be.
struct GridCoding {
    int workers = 2;            ///< threads that share the tiles
    int longestTileSide = 1024; ///< luma samples
};

/// Codes a picture for a HEIC file: alone where one HEVC picture may be so large, else as a grid. Its samples are
/// released as they are coded. Metadata is taken as it is. Throws MediaError, which names the file.
heif::CodedImage codedImage(const std::filesystem::path &file, Picture picture, const ImageMetadata &metadata,
                            int quantiser, GridCoding grid, const Cancellation &cancellation);

/// The metadata as it is true for the picture.
ImageMetadata correctedMetadata(const Picture &picture, ImageMetadata metadata);

} // namespace lumetwin::media::images
