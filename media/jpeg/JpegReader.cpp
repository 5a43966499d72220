// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/jpeg/JpegReader.h"

#include "media/MediaError.h"
#include "media/colour/ColourProfile.h"
#include "media/jpeg/JpegErrors.h"
#include "media/jpeg/JpegProfile.h"
#include "media/samples/FileStream.h"
#include "media/samples/Limits.h"
#include "media/samples/Rows.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <optional>

namespace lumetwin::media::images {

namespace {

constexpr char exifMark[] = "Exif\0";                      // with its second zero: six bytes
constexpr char xmpMark[] = "http://ns.adobe.com/xap/1.0/"; // with its zero
constexpr int scanLimit = 256;                             // limits the work that a small file can cause

struct Decoder {
    JpegErrors errors;
    jpeg_decompress_struct codec{};
    const std::filesystem::path &file;
    const Cancellation &cancellation;
    bool created = false;

    Decoder(const std::filesystem::path &path, const Cancellation &asked) : file(path), cancellation(asked) {
        codec.err = &errors.manager;
        codec.client_data = &errors;
        run([&] { jpeg_create_decompress(&codec); });
        created = true;
    }
    ~Decoder() {
        if (created)
            jpeg_destroy_decompress(&codec);
    }
    Decoder(const Decoder &) = delete;

    [[noreturn]] void fail() const {
        cancellation.check();
        const bool tooManyScans = codec.input_scan_number > scanLimit;
        throw MediaError(file, MediaOperation::read, errors.code,
                         tooManyScans ? MediaReason::tooManyScans : errors.reason(), errors.message);
    }

    template <typename Step> void run(const Step &step) {
        if (!succeeds(errors, step))
            fail();
    }
};

/// The library calls this for each row of blocks. A file with several scans is decoded completely before its first row
/// is returned.
struct Progress : jpeg_progress_mgr {
    const Cancellation *cancellation = nullptr;
};

void watch(j_common_ptr codec) {
    auto *decompressor = reinterpret_cast<j_decompress_ptr>(codec);
    const auto *progress = static_cast<const Progress *>(codec->progress);
    if (decompressor->input_scan_number > scanLimit || progress->cancellation->requested()) {
        std::longjmp(static_cast<JpegErrors *>(codec->client_data)->jump, 1);
    }
}

void readHeader(Decoder &decoder, std::FILE *stream) {
    decoder.run([&] {
        jpeg_stdio_src(&decoder.codec, stream);
        jpeg_save_markers(&decoder.codec, JPEG_APP0 + 1, 0xFFFF);
        jpeg_save_markers(&decoder.codec, JPEG_APP0 + 2, 0xFFFF);
        jpeg_read_header(&decoder.codec, TRUE);
    });
    checkSize(decoder.file, decoder.codec.image_width, decoder.codec.image_height);
}

template <std::size_t size> bool beginsWith(const jpeg_marker_struct &marker, const char (&mark)[size]) {
    return marker.data_length >= size && std::memcmp(marker.data, mark, size) == 0;
}

ImageMetadata metadataIn(Decoder &decoder) {
    ImageMetadata metadata;
    for (const jpeg_marker_struct *marker = decoder.codec.marker_list; marker; marker = marker->next) {
        if (marker->marker != JPEG_APP0 + 1)
            continue;
        if (beginsWith(*marker, exifMark) && metadata.exif.empty())
            metadata.exif.assign(marker->data + sizeof(exifMark), marker->data + marker->data_length);
        else if (beginsWith(*marker, xmpMark) && metadata.xmp.empty())
            metadata.xmp.assign(reinterpret_cast<const char *>(marker->data) + sizeof(xmpMark),
                                marker->data_length - sizeof(xmpMark));
    }
    metadata.iccProfile = profileIn(decoder);
    return metadata;
}

/// The format of the planes if the file codes Y'CbCr or grey in a form that planes support; otherwise nullopt.
std::optional<PictureFormat> planarFormat(const jpeg_decompress_struct &codec) {
    if (codec.jpeg_color_space == JCS_GRAYSCALE && codec.num_components == 1 && codec.max_v_samp_factor <= 2)
        return PictureFormat{ColourModel::grey, 8, 0, 0};
    if (codec.jpeg_color_space != JCS_YCbCr || codec.num_components != 3)
        return std::nullopt;
    const jpeg_component_info *parts = codec.comp_info;
    const bool simple = parts[0].h_samp_factor <= 2 && parts[0].v_samp_factor <= 2 && parts[1].h_samp_factor == 1 &&
                        parts[1].v_samp_factor == 1 && parts[2].h_samp_factor == 1 && parts[2].v_samp_factor == 1;
    if (!simple)
        return std::nullopt;
    return PictureFormat{ColourModel::yuv, 8, parts[0].h_samp_factor - 1, parts[0].v_samp_factor - 1};
}

/// The library writes whole blocks, so the returned picture is a part of a larger one with space for them.
Picture pictureWithRoom(const Decoder &decoder, PictureFormat format) {
    const int width = static_cast<int>(decoder.codec.image_width);
    const int height = static_cast<int>(decoder.codec.image_height);
    const Picture whole = makeChecked(decoder.file, std::min((width + 15) / 16 * 16, 65535),
                                      std::min((height + 15) / 16 * 16, 65535), format, jpegColour);
    return cropped(whole, 0, 0, width, height);
}

void readPlanes(Decoder &decoder, const Picture &picture) {
    jpeg_decompress_struct &codec = decoder.codec;
    decoder.run([&] {
        codec.raw_data_out = TRUE;
        codec.do_fancy_upsampling = FALSE;
        jpeg_start_decompress(&codec);
        const int lines = codec.max_v_samp_factor * DCTSIZE;
        JSAMPROW rows[3][2 * DCTSIZE];
        JSAMPARRAY planes[3] = {rows[0], rows[1], rows[2]};
        while (codec.output_scanline < codec.output_height) {
            for (int plane = 0; plane < picture.format.planeCount(); ++plane) {
                const int first = static_cast<int>(codec.output_scanline) >> picture.format.shiftY(plane);
                for (int line = 0; line < lines >> picture.format.shiftY(plane); ++line)
                    rows[plane][line] = planeRow<JSAMPLE>(picture, plane, first + line);
            }
            jpeg_read_raw_data(&codec, planes, static_cast<JDIMENSION>(lines));
        }
    });
}

/// Decodes row by row in the given colour space and calls `take` with each row.
template <typename Take> void readRows(Decoder &decoder, J_COLOR_SPACE space, int channels, const Take &take) {
    jpeg_decompress_struct &codec = decoder.codec;
    std::vector<JSAMPLE> buffer(static_cast<std::size_t>(codec.image_width) * channels);
    decoder.run([&] {
        codec.out_color_space = space;
        jpeg_start_decompress(&codec);
        while (codec.output_scanline < codec.output_height) {
            const int y = static_cast<int>(codec.output_scanline);
            JSAMPROW row = buffer.data();
            jpeg_read_scanlines(&codec, &row, 1);
            take(buffer.data(), y);
        }
    });
}

constexpr ColourTags rgbColour{1, 13, 0, ColourRange::full, ChromaLocation::unspecified};

Picture readInterleaved(Decoder &decoder, ImageMetadata &metadata) {
    const jpeg_decompress_struct &codec = decoder.codec;
    const int width = static_cast<int>(codec.image_width);
    Picture picture =
        makeChecked(decoder.file, width, static_cast<int>(codec.image_height), {ColourModel::rgb, 8, 0, 0}, rgbColour);
    if (codec.num_components != 4) {
        readRows(decoder, JCS_RGB, 3, [&](const JSAMPLE *row, int y) {
            scatterRow(row, PixelLayout{3, Alpha::none}, picture, 0, y, width);
        });
        return picture;
    }
    // Files with Adobe's marker have inverted inks.
    const CmykRows inks(metadata.iccProfile, 1, codec.saw_Adobe_marker == TRUE);
    std::vector<JSAMPLE> rgb(static_cast<std::size_t>(width) * 3);
    readRows(decoder, JCS_CMYK, 4, [&](const JSAMPLE *row, int y) {
        inks.convert(row, rgb.data(), width);
        scatterRow<JSAMPLE>(rgb.data(), PixelLayout{3, Alpha::none}, picture, 0, y, width);
    });
    metadata.iccProfile.clear();
    return picture;
}

bool blocksFit(const Decoder &decoder) {
    return decoder.codec.image_width <= 65520 && decoder.codec.image_height <= 65520;
}

} // namespace

StillImage readJpeg(const InputFile &file, const Cancellation &cancellation) {
    return readJpeg(file, 0, std::numeric_limits<std::uint64_t>::max(), cancellation);
}

StillImage readJpeg(const InputFile &file, std::uint64_t begin, std::uint64_t end, const Cancellation &cancellation) {
    const FileStream stream = streamOf(file, begin, end);
    Decoder decoder(file.path(), cancellation);
    readHeader(decoder, stream.get());
    StillImage image;
    image.metadata = metadataIn(decoder);
    Progress progress{};
    progress.progress_monitor = watch;
    progress.cancellation = &cancellation;
    decoder.codec.progress = &progress;
    const auto format = planarFormat(decoder.codec);
    if (format && blocksFit(decoder)) {
        image.picture = pictureWithRoom(decoder, *format);
        readPlanes(decoder, image.picture);
    } else {
        image.picture = readInterleaved(decoder, image.metadata);
    }
    if (decoder.errors.damaged)
        decoder.fail();
    const int channels = image.picture.format.planeCount();
    if (!matchesChannels(image.metadata.iccProfile, channels))
        image.metadata.iccProfile.clear();
    return image;
}

} // namespace lumetwin::media::images
