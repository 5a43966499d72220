// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"
#include "media/OutputFile.h"
#include "media/heif/HeifWriter.h"

namespace lumetwin::media::images {

/// How a picture is encoded that is larger than one HEVC picture may be.
struct GridCoding {
    int workers = 2;            ///< threads that share the tiles
    int longestTileSide = 1024; ///< luma samples
};

/// Encodes a picture for a HEIC file, as one HEVC picture if it is small enough, otherwise as a grid. The samples are
/// released while they are encoded. The metadata is not changed. Throws MediaError, which names the file.
heif::CodedImage codedImage(const std::filesystem::path &file, Picture picture, const ImageMetadata &metadata,
                            int quantiser, GridCoding grid, const Cancellation &cancellation);

/// Encodes and writes one image. Its samples are released while they are encoded. Throws MediaError, and Cancelled.
void writeHeif(const OutputFile &file, StillImage image, double quality, const Cancellation &cancellation);

/// The quantiser of HEVC, 6 to 51 where lower is finer, for a quality of 0.0 to 1.0.
int heifQuantiser(double quality);

} // namespace lumetwin::media::images
