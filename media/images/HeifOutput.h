// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/ImageFile.h"
#include "media/heif/HeifWriter.h"

namespace lumetwin::media::images {

/// Codes a picture for a HEIC file: alone where one HEVC picture may be so large, else as a grid whose tiles the given
/// number of threads share. Its samples are released as they are coded. Metadata is taken as it is. Throws
/// MediaError, which names the file.
heif::CodedImage codedImage(const std::filesystem::path &file, Picture picture, const ImageMetadata &metadata,
                            int quantiser, int workers);

/// The metadata as it is true for the picture.
ImageMetadata correctedMetadata(const Picture &picture, ImageMetadata metadata);

} // namespace lumetwin::media::images
