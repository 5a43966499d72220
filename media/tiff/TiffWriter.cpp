// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/tiff/TiffWriter.h"

#include "media/MediaError.h"
#include "media/colour/ColourProfile.h"
#include "media/metadata/ExifBlock.h"
#include "media/metadata/ExifInTiff.h"
#include "media/samples/FileStream.h"
#include "media/samples/Rows.h"
#include "media/tiff/Tiff.h"

#include <algorithm>
#include <cerrno>

namespace lumetwin::media::images {

namespace {

constexpr MediaOperation writing = MediaOperation::write;
constexpr std::uint32_t stripBytes = 256 * 1024; // uncompressed; readers decode strip by strip

void setField(const TiffFile &tiff, bool done) {
    if (!done)
        tiff.fail(writing, MediaReason::dataRefused);
}

void describe(const TiffFile &tiff, const Picture &picture) {
    TIFF *file = tiff.get();
    const int channels = picture.format.planeCount();
    const auto rowBytes = static_cast<std::uint32_t>(picture.width * channels * picture.format.bytesPerSample());
    setField(tiff,
             TIFFSetField(file, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(picture.width)) &&
                 TIFFSetField(file, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(picture.height)) &&
                 TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, picture.format.bytesPerSample() * 8) &&
                 TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, channels) &&
                 TIFFSetField(file, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
                 TIFFSetField(file, TIFFTAG_PHOTOMETRIC, channels == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB) &&
                 TIFFSetField(file, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) &&
                 TIFFSetField(file, TIFFTAG_COMPRESSION, COMPRESSION_LZW) &&
                 TIFFSetField(file, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) &&
                 TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, std::max(1u, stripBytes / rowBytes)));
}

/// Sets the text fields of the first directory about the photograph. The sub-directories are added to the finished
/// file.
void describePhotograph(const TiffFile &tiff, const ExifBlock &exif) {
    for (const std::uint16_t tag : {TIFFTAG_IMAGEDESCRIPTION, TIFFTAG_MAKE, TIFFTAG_MODEL, TIFFTAG_SOFTWARE,
                                    TIFFTAG_DATETIME, TIFFTAG_ARTIST, TIFFTAG_COPYRIGHT})
        if (const std::string text = exif.imageText(tag); !text.empty())
            TIFFSetField(tiff.get(), tag, text.c_str());
}

void setMetadata(const TiffFile &tiff, const ImageMetadata &metadata, const ExifBlock &exif) {
    const auto &profile = metadata.iccProfile;
    if (!profile.empty())
        setField(tiff, TIFFSetField(tiff.get(), TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(profile.size()),
                                    profile.data()));
    if (!metadata.xmp.empty())
        setField(tiff, TIFFSetField(tiff.get(), TIFFTAG_XMLPACKET, static_cast<std::uint32_t>(metadata.xmp.size()),
                                    metadata.xmp.data()));
    describePhotograph(tiff, exif);
    // Space for the offsets of the sub-directories.
    if (exif.hasPhotograph())
        setField(tiff, TIFFSetField(tiff.get(), TIFFTAG_EXIFIFD, std::uint64_t{8}));
    if (exif.hasPosition())
        setField(tiff, TIFFSetField(tiff.get(), TIFFTAG_GPSIFD, std::uint64_t{8}));
}

void widen(std::uint16_t *samples, std::size_t count, int depth) {
    for (std::size_t i = 0; depth < 16 && i < count; ++i)
        samples[i] = static_cast<std::uint16_t>((samples[i] << (16 - depth)) | (samples[i] >> (2 * depth - 16)));
}

void writeRows(const TiffFile &tiff, const Picture &picture, const Cancellation &cancellation) {
    const std::size_t count = static_cast<std::size_t>(picture.width) * picture.format.planeCount();
    std::vector<std::uint16_t> buffer(count);
    errno = 0;
    for (int y = 0; y < picture.height; ++y) {
        cancellation.check();
        if (picture.format.depth == 8) {
            gatherRow(picture, y, reinterpret_cast<std::uint8_t *>(buffer.data()));
        } else {
            gatherRow(picture, y, buffer.data());
            widen(buffer.data(), count, picture.format.depth);
        }
        if (TIFFWriteScanline(tiff.get(), buffer.data(), static_cast<std::uint32_t>(y), 0) < 0)
            throw writingError(tiff.file, tiff.message);
    }
}

} // namespace

void writeTiff(const OutputFile &file, const StillImage &image, const Cancellation &cancellation) {
    if (image.picture.format.model == ColourModel::yuv)
        throw MediaError(file.path(), writing, 0, MediaReason::beyondFormat);
    const ExifBlock exif = ExifBlock::parse(image.metadata.exif);
    {
        TiffFile tiff(file);
        describe(tiff, image.picture);
        setMetadata(tiff, image.metadata, exif);
        writeRows(tiff, image.picture, cancellation);
        if (TIFFFlush(tiff.get()) == 0)
            throw writingError(tiff.file, tiff.message);
    }
    addSubdirectories(file, exif);
}

} // namespace lumetwin::media::images
