// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Cancellation.h"
#include "media/InputFile.h"
#include "media/OutputFile.h"
#include "media/PhotoExtras.h"
#include "media/Picture.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumetwin::media {

enum class ImageKind { jpeg, png, tiff, heif };

/// The kind of image that a file's first bytes announce, whatever it is called; nothing for other files and for
/// those that cannot be read.
std::optional<ImageKind> imageKind(const InputFile &file) noexcept;

/// What an image file holds beside its samples.
struct ImageMetadata {
    std::vector<std::uint8_t> iccProfile; ///< empty: what the picture's tags say, else sRGB
    std::vector<std::uint8_t> exif;       ///< from the TIFF header on, without "Exif\0\0"
    std::string xmp;                      ///< an XMP packet
};

struct StillImage {
    Picture picture;
    ImageMetadata metadata;
};

// See SpatialPhoto.h.
enum class Eye;
enum class PhotoSamples;
struct StereoPhotoFacts;
using EyeTaker = std::function<void(Eye eye, StillImage image)>;

/// An image file whose headers have been read. A value: copies share what was read. Any thread may use it.
class ImageFile {
public:
    /// Throws MediaError when the file is no image, and for a HEIF file whose headers are damaged.
    explicit ImageFile(const InputFile &file);

    const std::filesystem::path &path() const;
    ImageKind kind() const;
    /// How many images the file offers: pages of a TIFF, images of a HEIF file that are not hidden, auxiliary or
    /// thumbnails, else 1. Throws MediaError.
    int imageCount() const;
    /// What lies beside its pictures; nothing where that cannot be read.
    PhotoExtras extras() const noexcept;

    /// The file's first image at the precision of its samples: JPEG as Y'CbCr planes where it is coded so, everything
    /// else as grey or RGB. Transparent pixels are drawn onto black; CMYK is converted to sRGB. The orientation that
    /// Exif states is not applied; transformations that HEIF states are part of the picture. Throws MediaError for
    /// damaged, truncated, oversized and unsupported files, and Cancelled when it is to stop.
    StillImage read(const Cancellation &cancellation = {}) const;

private:
    friend StereoPhotoFacts stereoPhotoFacts(const ImageFile &file);
    friend void readSpatialPhoto(const ImageFile &file, PhotoSamples samples, const EyeTaker &take,
                                 const Cancellation &cancellation);

    struct Opened;
    std::shared_ptr<const Opened> opened_;
};

/// Writes an image. Quality, 0.0 to
/// 1.0, means something in JPEG and HEIC only. Samples that the format cannot hold are converted: Y'CbCr to
/// the matrix and range of JFIF for JPEG, to RGB for PNG and TIFF, everything to 8-bit 4:2:0 for HEIC. Orientation,
/// dimensions and thumbnails in the metadata are corrected for the picture. Throws MediaError, and Cancelled when it is
/// to stop.
void writeImage(const OutputFile &file, ImageKind kind, StillImage image, double quality,
                const Cancellation &cancellation = {});

/// The tags that a JPEG file's samples have by definition (JFIF 1.02): full range, matrix of ITU-R BT.601.
inline constexpr ColourTags jpegColour{1, 13, 6, ColourRange::full, ChromaLocation::centre};

/// The largest picture that is read: samples of one plane.
inline constexpr std::int64_t maximumPixels = std::int64_t{1} << 28;

} // namespace lumetwin::media
