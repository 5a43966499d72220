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

/// A HEIF file whose headers have been read. Its bytes are loaded when the first image is decoded, once. Any thread may
/// read images of it.
class HeifReader {
public:
    /// Throws MediaError when the file is no HEIF file, damaged, or beyond the limits.
    explicit HeifReader(const InputFile &file);

    const HeifFile &headers() const { return headers_; }
    /// What they say of the stereo pair.
    StereoPhotoFacts stereoFacts() const;
    /// The image with that index in the headers, with its transformations applied. Throws MediaError, and Cancelled.
    StillImage read(std::size_t image, PhotoSamples samples, const Cancellation &cancellation) const;
    /// The file's first image. Throws MediaError where it holds none.
    StillImage readFirst(const Cancellation &cancellation) const;

private:
    std::shared_ptr<const HeifDocument> document() const;

    InputFile file_;
    HeifFile headers_;
    mutable std::mutex loading_;
    mutable std::shared_ptr<const HeifDocument> document_;
};

} // namespace lumetwin::media::heif
