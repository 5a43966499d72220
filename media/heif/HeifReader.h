// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"
#include "media/InputFile.h"
#include "media/SpatialPhoto.h"
#include "media/heif/HeifFile.h"

#include <memory>
#include <mutex>

namespace lumetwin::media::heif {

class HeifDocument;

/// A HEIF file with its headers read. The whole file is loaded once, when the first image is decoded. Images may be
/// read on any thread.
class HeifReader {
public:
    /// Throws MediaError when the file is not a HEIF file, is damaged, or exceeds the limits.
    explicit HeifReader(const InputFile &file);

    const HeifFile &headers() const { return headers_; }
    /// The stereo facts in the headers.
    StereoPhotoFacts stereoFacts() const;
    /// Reads the image with that index in the headers and applies its transformations. Throws MediaError, and
    /// Cancelled.
    StillImage read(std::size_t image, PhotoSamples samples, const Cancellation &cancellation) const;
    /// Reads the file's first image. Throws MediaError when there is none.
    StillImage readFirst(const Cancellation &cancellation) const;
    /// The size of that picture. Throws MediaError when there is none, or nothing that decodes it.
    PixelSize firstSize() const;

private:
    const HeifImage &first() const;
    std::shared_ptr<const HeifDocument> document() const;

    InputFile file_;
    HeifFile headers_;
    mutable std::mutex loading_;
    mutable std::shared_ptr<const HeifDocument> document_;
};

} // namespace lumetwin::media::heif
