// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Cancellation.h"
#include "media/InputFile.h"
#include "media/OutputFile.h"
#include "media/PhotoExtras.h"
#include "media/Picture.h"
#include "media/StereoPacking.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumetwin::media {

enum class ImageKind { jpeg, png, tiff, heif };

/// The image format according to the file's first bytes, independent of its name; nullopt for other and unreadable
/// files.
std::optional<ImageKind> imageKind(const InputFile &file) noexcept;

struct PixelSize {
    int width = 0;
    int height = 0;
};

/// The metadata of an image file.
struct ImageMetadata {
    std::vector<std::uint8_t> iccProfile; ///< empty: the picture's tags apply, otherwise sRGB
    std::vector<std::uint8_t> exif;       ///< begins with the TIFF header, without "Exif\0\0"
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

/// An image file whose headers were read. Copies share them. May be used on any thread.
class ImageFile {
public:
    /// Throws MediaError when the file is not an image, or is a HEIF file with damaged headers.
    explicit ImageFile(const InputFile &file);

    const InputFile &input() const;
    const std::filesystem::path &path() const;
    ImageKind kind() const;
    /// The number of images: pages of a TIFF, images of a HEIF file that are not hidden, auxiliary or thumbnails,
    /// otherwise 1. Throws MediaError.
    int imageCount() const;
    /// The size of the picture that read() returns, from the headers where they say it. Throws MediaError.
    PixelSize size() const;
    /// The contents besides its pictures; empty when they cannot be read.
    PhotoExtras extras() const noexcept;

    /// Reads the file's first image with its full sample depth: JPEG as Y'CbCr planes if it is coded so, everything
    /// else as grey or RGB. Transparent pixels are drawn on black. CMYK is converted to sRGB. The orientation from Exif
    /// is not applied; the transformations of HEIF are. Columns between the two eyes of a PNG file are left out. Throws
    /// MediaError for damaged, truncated, oversized and unsupported files, and Cancelled when cancelled.
    StillImage read(const Cancellation &cancellation = {}) const;

private:
    friend StereoPhotoFacts stereoPhotoFacts(const ImageFile &file);
    friend StillImage readSpatialPhotoEye(const ImageFile &file, Eye eye, PhotoSamples samples,
                                          const Cancellation &cancellation);
    friend void readSpatialPhoto(const ImageFile &file, PhotoSamples samples, const EyeTaker &take,
                                 const Cancellation &cancellation);

    struct Opened;
    std::shared_ptr<const Opened> opened_;
};

/// Writes an image. Quality is 0.0 to 1.0 and only used for JPEG and HEIC. Samples that the format does not support are
/// converted: Y'CbCr to the matrix and range of JFIF for JPEG, to RGB for PNG and TIFF, everything to 8-bit 4:2:0 for
/// HEIC. Orientation, dimensions and thumbnails in the metadata are corrected. A picture that holds both eyes side by
/// side or over each other is marked as such in JPEG (the block of .jps files), with the packing. Throws MediaError,
/// and Cancelled when cancelled.
void writeImage(const OutputFile &file, ImageKind kind, StillImage image, double quality,
                const Cancellation &cancellation = {}, const std::optional<StereoPacking> &packing = {});

/// The colour tags of JPEG samples by definition (JFIF 1.02): full range, matrix of ITU-R BT.601.
inline constexpr ColourTags jpegColour{1, 13, 6, ColourRange::full, ChromaLocation::centre};

/// The largest picture that is read, in samples of one plane.
inline constexpr std::int64_t maximumPixels = std::int64_t{1} << 28;

} // namespace lumetwin::media
