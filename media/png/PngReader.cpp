// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/png/PngReader.h"

#include "media/MediaError.h"
#include "media/colour/ColourProfile.h"
#include "media/png/PngErrors.h"
#include "media/png/PngHeaders.h"
#include "media/samples/FileStream.h"
#include "media/samples/Limits.h"
#include "media/samples/Rows.h"

#include <bit>
#include <cmath>
#include <cstring>

namespace lumetwin::media::images {

namespace {

constexpr png_uint_32 maximumSide = 65535;
constexpr png_alloc_size_t chunkLimit = 32u
                                        << 20; // bytes, the maximum decompressed size of a profile, text or Exif chunk
constexpr png_uint_32 chunkCountLimit = 1000;

struct Decoder {
    PngErrors errors;
    png_structp codec = nullptr;
    png_infop info = nullptr;
    const std::filesystem::path &file;
    const Cancellation &cancellation;

    Decoder(const std::filesystem::path &path, const Cancellation &asked) : file(path), cancellation(asked) {
        codec = png_create_read_struct(PNG_LIBPNG_VER_STRING, &errors, keepPngError, ignorePngWarning);
        info = codec ? png_create_info_struct(codec) : nullptr;
        if (!info) {
            png_destroy_read_struct(&codec, &info, nullptr);
            throw MediaError(file, MediaOperation::read, 0, MediaReason::noMemory);
        }
    }
    ~Decoder() { png_destroy_read_struct(&codec, &info, nullptr); }
    Decoder(const Decoder &) = delete;

    MediaReason reason() const {
        auto *stream = static_cast<std::FILE *>(png_get_io_ptr(codec));
        return stream && std::feof(stream) != 0 ? MediaReason::endsEarly : MediaReason::damaged;
    }

    template <typename Step> void run(const Step &step) {
        if (!succeeds(codec, step))
            throw MediaError(file, MediaOperation::read, 0, reason(), errors.message);
    }
};

void readHeader(Decoder &decoder, std::FILE *stream) {
    decoder.run([&] {
        png_init_io(decoder.codec, stream);
        png_set_user_limits(decoder.codec, maximumSide, maximumSide);
        png_set_chunk_malloc_max(decoder.codec, chunkLimit);
        png_set_chunk_cache_max(decoder.codec, chunkCountLimit);
        png_read_info(decoder.codec, decoder.info);
    });
    checkSize(decoder.file, png_get_image_width(decoder.codec, decoder.info),
              png_get_image_height(decoder.codec, decoder.info));
}

/// Makes the library return every file as grey or RGB with 8 or 16 bits in native byte order, with or without alpha.
int simplify(Decoder &decoder) {
    int passes = 1;
    decoder.run([&] {
        png_set_expand(decoder.codec); // palette to RGB, small grey to 8 bits, transparent colours to alpha
        if (std::endian::native == std::endian::little)
            png_set_swap(decoder.codec);
        passes = png_set_interlace_handling(decoder.codec);
        png_read_update_info(decoder.codec, decoder.info);
    });
    return passes;
}

void takeRow(const std::uint8_t *row, PixelLayout layout, const Picture &picture, int y) {
    if (picture.format.depth == 8)
        scatterRow(row, layout, picture, 0, y, picture.width);
    else
        scatterRow(reinterpret_cast<const std::uint16_t *>(row), layout, picture, 0, y, picture.width);
}

void readProgressive(Decoder &decoder, PixelLayout layout, const Picture &picture) {
    std::vector<std::uint16_t> buffer(png_get_rowbytes(decoder.codec, decoder.info) / 2 + 1);
    auto *row = reinterpret_cast<std::uint8_t *>(buffer.data());
    for (int y = 0; y < picture.height; ++y) {
        decoder.cancellation.check();
        decoder.run([&] { png_read_row(decoder.codec, row, nullptr); });
        takeRow(row, layout, picture, y);
    }
}

/// The passes of an interlaced file refine rows, so all rows are kept in the layout of the file.
void readInterlaced(Decoder &decoder, PixelLayout layout, const Picture &picture, int passes) {
    const std::size_t stride = (png_get_rowbytes(decoder.codec, decoder.info) + 1) / 2;
    const std::unique_ptr<std::uint16_t[]> whole(new (std::nothrow) std::uint16_t[stride * picture.height]);
    if (!whole)
        throw MediaError(decoder.file, MediaOperation::read, 0, MediaReason::noMemory);
    const auto rowAt = [&](int y) { return reinterpret_cast<std::uint8_t *>(whole.get() + stride * y); };
    decoder.run([&] {
        for (int pass = 0; pass < passes; ++pass)
            for (int y = 0; y < picture.height; ++y) {
                decoder.cancellation.check();
                png_read_row(decoder.codec, rowAt(y), nullptr);
            }
    });
    for (int y = 0; y < picture.height; ++y)
        takeRow(rowAt(y), layout, picture, y);
}

/// A profile for the colour space in gAMA and cHRM; empty for sRGB.
std::vector<std::uint8_t> describedProfile(Decoder &decoder) {
    double gamma = 0;
    double white[2];
    double colours[3][2];
    const bool described =
        png_get_valid(decoder.codec, decoder.info, PNG_INFO_sRGB) == 0 &&
        png_get_gAMA(decoder.codec, decoder.info, &gamma) != 0 && gamma > 0.1 && gamma < 2 &&
        png_get_cHRM(decoder.codec, decoder.info, &white[0], &white[1], &colours[0][0], &colours[0][1], &colours[1][0],
                     &colours[1][1], &colours[2][0], &colours[2][1]) != 0;
    if (!described)
        return {};
    // Files write 1/2.2 for sRGB; its primaries are those of ITU-R BT.709.
    const bool plain = std::abs(gamma - 1 / 2.2) < 0.01 && std::abs(colours[0][0] - 0.64) < 0.002 &&
                       std::abs(colours[1][1] - 0.60) < 0.002 && std::abs(colours[2][0] - 0.15) < 0.002;
    return plain ? std::vector<std::uint8_t>{} : profileOf(white, colours, 1 / gamma);
}

std::vector<std::uint8_t> profileIn(Decoder &decoder, int channels) {
    png_charp name = nullptr;
    png_bytep data = nullptr;
    png_uint_32 length = 0;
    int compression = 0;
    std::vector<std::uint8_t> profile;
    if (png_get_iCCP(decoder.codec, decoder.info, &name, &compression, &data, &length) != 0)
        profile.assign(data, data + length);
    else if (channels == 3)
        profile = describedProfile(decoder);
    return matchesChannels(profile, channels) ? profile : std::vector<std::uint8_t>{};
}

/// Reads the metadata, also after the samples. Damage there is ignored.
ImageMetadata metadataIn(Decoder &decoder, int channels) {
    succeeds(decoder.codec, [&] { png_read_end(decoder.codec, decoder.info); });
    ImageMetadata metadata;
    png_uint_32 length = 0;
    png_bytep exif = nullptr;
    if (png_get_eXIf_1(decoder.codec, decoder.info, &length, &exif) != 0)
        metadata.exif.assign(exif, exif + length);
    png_textp texts = nullptr;
    int count = 0;
    png_get_text(decoder.codec, decoder.info, &texts, &count);
    for (int i = 0; i < count; ++i)
        if (std::strcmp(texts[i].key, "XML:com.adobe.xmp") == 0)
            metadata.xmp.assign(texts[i].text,
                                texts[i].compression > 0 ? texts[i].itxt_length : std::strlen(texts[i].text));
    metadata.iccProfile = profileIn(decoder, channels);
    return metadata;
}

/// The picture without the columns between the two eyes of a file with sTER, so that each half is one eye.
Picture withoutColumnsBetween(const Picture &picture) {
    const int columns = columnsBetweenEyes(picture.width);
    const int eye = (picture.width - columns) / 2;
    const std::size_t sampleSize = picture.format.depth > 8 ? 2 : 1;
    for (int plane = 0; plane < picture.format.planeCount(); ++plane)
        for (int y = 0; y < picture.height; ++y) {
            std::uint8_t *second = planeRow<std::uint8_t>(picture, plane, y) + sampleSize * eye;
            std::memmove(second, second + sampleSize * columns, sampleSize * eye);
        }
    return cropped(picture, 0, 0, 2 * eye, picture.height);
}

} // namespace

StillImage readPng(const InputFile &file, const Cancellation &cancellation) {
    const FileStream stream = streamOf(file);
    Decoder decoder(file.path(), cancellation);
    readHeader(decoder, stream.get());
    const int passes = simplify(decoder);
    const int channels = png_get_channels(decoder.codec, decoder.info);
    const bool alpha = channels == 2 || channels == 4;
    const int colours = alpha ? channels - 1 : channels;
    const PictureFormat format{colours == 1 ? ColourModel::grey : ColourModel::rgb,
                               png_get_bit_depth(decoder.codec, decoder.info), 0, 0};
    StillImage image;
    image.picture = makeChecked(file.path(), static_cast<int>(png_get_image_width(decoder.codec, decoder.info)),
                                static_cast<int>(png_get_image_height(decoder.codec, decoder.info)), format,
                                {1, 13, colours == 1 ? 2 : 0, ColourRange::full, ChromaLocation::unspecified});
    const PixelLayout layout{channels, alpha ? Alpha::straight : Alpha::none};
    if (passes == 1)
        readProgressive(decoder, layout, image.picture);
    else
        readInterlaced(decoder, layout, image.picture, passes);
    image.metadata = metadataIn(decoder, colours);
    if (readPngHeaders(*bmff::openFile(file)).packing && columnsBetweenEyes(image.picture.width) > 0)
        image.picture = withoutColumnsBetween(image.picture);
    return image;
}

} // namespace lumetwin::media::images
