// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/png/PngWriter.h"

#include "media/MediaError.h"
#include "media/png/PngErrors.h"
#include "media/samples/FileStream.h"
#include "media/samples/Rows.h"

#include <bit>
#include <cerrno>
#include <new>

namespace lumetwin::media::images {

namespace {

/// Higher levels save little for photographs and need several times as long.
constexpr int compressionLevel = 4;

struct Encoder {
    PngErrors errors;
    png_structp codec = nullptr;
    png_infop info = nullptr;
    const std::filesystem::path &file;

    explicit Encoder(const std::filesystem::path &path) : file(path) {
        codec = png_create_write_struct(PNG_LIBPNG_VER_STRING, &errors, keepPngError, ignorePngWarning);
        info = codec ? png_create_info_struct(codec) : nullptr;
        if (!info) {
            png_destroy_write_struct(&codec, &info);
            throw MediaError(file, MediaOperation::write, 0, MediaReason::noMemory);
        }
    }
    ~Encoder() { png_destroy_write_struct(&codec, &info); }
    Encoder(const Encoder &) = delete;

    template <typename Step> void run(const Step &step) {
        errno = 0;
        if (!succeeds(codec, step))
            throw writingError(file, errors.message);
    }
};

/// Bits per sample in the file: PNG has 8 and 16.
int fileDepth(const Picture &picture) {
    return picture.format.depth > 8 ? 16 : 8;
}

void setMetadata(const Encoder &encoder, ImageMetadata &metadata, const ColourTags &colour) {
    if (!metadata.iccProfile.empty())
        png_set_iCCP(encoder.codec, encoder.info, "ICC profile", PNG_COMPRESSION_TYPE_BASE, metadata.iccProfile.data(),
                     static_cast<png_uint_32>(metadata.iccProfile.size()));
    else if (colour.primaries == 1)
        png_set_sRGB(encoder.codec, encoder.info, PNG_sRGB_INTENT_PERCEPTUAL);
    if (!metadata.exif.empty())
        png_set_eXIf_1(encoder.codec, encoder.info, static_cast<png_uint_32>(metadata.exif.size()),
                       metadata.exif.data());
    if (metadata.xmp.empty())
        return;
    char key[] = "XML:com.adobe.xmp";
    char none[] = "";
    png_text text{};
    text.compression = PNG_ITXT_COMPRESSION_NONE;
    text.key = key;
    text.text = metadata.xmp.data();
    text.itxt_length = metadata.xmp.size();
    text.lang = none;
    text.lang_key = none;
    png_set_text(encoder.codec, encoder.info, &text, 1);
}

/// Scales samples of 9 to 15 bits to 16 bits so that white stays white.
void widen(std::uint16_t *samples, std::size_t count, int depth) {
    for (std::size_t i = 0; depth < 16 && i < count; ++i)
        samples[i] = static_cast<std::uint16_t>((samples[i] << (16 - depth)) | (samples[i] >> (2 * depth - 16)));
}

void writeRows(Encoder &encoder, const Picture &picture, const Cancellation &cancellation) {
    const std::size_t count = static_cast<std::size_t>(picture.width) * picture.format.planeCount();
    std::vector<std::uint16_t> buffer(count);
    auto *bytes = reinterpret_cast<std::uint8_t *>(buffer.data());
    for (int y = 0; y < picture.height; ++y) {
        cancellation.check();
        if (picture.format.depth == 8) {
            gatherRow(picture, y, bytes);
        } else {
            gatherRow(picture, y, buffer.data());
            widen(buffer.data(), count, picture.format.depth);
        }
        encoder.run([&] { png_write_row(encoder.codec, bytes); });
    }
}

} // namespace

void writePng(const OutputFile &file, const StillImage &image, const Cancellation &cancellation) {
    const Picture &picture = image.picture;
    if (picture.format.model == ColourModel::yuv)
        throw MediaError(file.path(), MediaOperation::write, 0, MediaReason::beyondFormat);
    ImageMetadata metadata = image.metadata;
    FileStream stream = streamOf(file);
    Encoder encoder(file.path());
    encoder.run([&] {
        png_init_io(encoder.codec, stream.get());
        png_set_user_limits(encoder.codec, 0x7FFFFFFF, 0x7FFFFFFF);
        png_set_compression_level(encoder.codec, compressionLevel);
        png_set_IHDR(encoder.codec, encoder.info, static_cast<png_uint_32>(picture.width),
                     static_cast<png_uint_32>(picture.height), fileDepth(picture),
                     picture.format.model == ColourModel::grey ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB,
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        setMetadata(encoder, metadata, picture.colour);
        png_write_info(encoder.codec, encoder.info);
        if (std::endian::native == std::endian::little)
            png_set_swap(encoder.codec);
    });
    writeRows(encoder, picture, cancellation);
    encoder.run([&] { png_write_end(encoder.codec, nullptr); });
    closeWritten(std::move(stream), file);
}

} // namespace lumetwin::media::images
