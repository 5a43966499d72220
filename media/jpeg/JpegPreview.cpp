// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/jpeg/JpegPreview.h"

#include "media/Image.h"
#include "media/colour/ColourProfile.h"
#include "media/jpeg/JpegErrors.h"
#include "media/jpeg/JpegProfile.h"
#include "media/samples/FileStream.h"
#include "media/samples/Limits.h"
#include "media/samples/Rows.h"

#include <algorithm>
#include <span>
#include <vector>

namespace lumetwin::media::images {

namespace {

constexpr int scanLimit = 256; // limits the work that a small file can cause

struct Decoder {
    JpegErrors errors;
    jpeg_decompress_struct codec{};
    const std::filesystem::path &file;
    bool created = false;

    explicit Decoder(const std::filesystem::path &path) : file(path) {
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
        const bool tooManyScans = codec.input_scan_number > scanLimit;
        throw MediaError(file, MediaOperation::read, errors.code,
                         tooManyScans ? MediaReason::tooManyScans : errors.reason(), errors.message);
    }

    template <typename Step> void run(const Step &step) {
        if (!succeeds(errors, step))
            fail();
    }
};

void limitScans(j_common_ptr codec) {
    if (reinterpret_cast<j_decompress_ptr>(codec)->input_scan_number > scanLimit)
        std::longjmp(static_cast<JpegErrors *>(codec->client_data)->jump, 1);
}

/// The denominator of the smallest scale that keeps the size; the library is fast for these.
unsigned denominator(const jpeg_decompress_struct &codec, int width, int height) {
    unsigned scale = 8;
    while (scale > 1 && (codec.image_width < scale * static_cast<unsigned>(width) ||
                         codec.image_height < scale * static_cast<unsigned>(height)))
        scale /= 2;
    return scale;
}

bool hasBrightness(const jpeg_decompress_struct &codec) {
    return codec.jpeg_color_space == JCS_GRAYSCALE || codec.jpeg_color_space == JCS_YCbCr ||
           codec.jpeg_color_space == JCS_RGB;
}

/// Reads the header, and leaves the profile in the markers.
void readHeader(Decoder &decoder, std::FILE *stream) {
    jpeg_decompress_struct &codec = decoder.codec;
    decoder.run([&] {
        jpeg_stdio_src(&codec, stream);
        jpeg_save_markers(&codec, JPEG_APP0 + 2, 0xFFFF);
        jpeg_read_header(&codec, TRUE);
    });
    checkSize(decoder.file, codec.image_width, codec.image_height);
}

constexpr PictureFormat greySamples{ColourModel::grey, 8, 0, 0};
constexpr PictureFormat rgbSamples{ColourModel::rgb, 8, 0, 0};

enum class Detail {
    all,
    coarse, ///< brightness without its last bits, where the file has them in later scans
};

/// Whether the scans so far have the brightness of a picture that is reduced so much, but for the last bit.
bool hasCoarseBrightness(const jpeg_decompress_struct &codec, unsigned reduction) {
    // The coefficients of the reduced blocks (8, 4, 2, 1 along each side) lie before this one in zigzag order.
    const std::size_t end = reduction == 1 ? DCTSIZE2 : reduction == 2 ? 25 : reduction == 4 ? 5 : 1;
    const std::span<const int> missingBits(codec.coef_bits[0], end); // -1: nothing yet
    return std::ranges::all_of(missingBits, [](int bits) { return bits == 0 || bits == 1; });
}

/// Reads the scans of a progressive file until they suffice, and starts to decode what they have.
void startCoarse(jpeg_decompress_struct &codec) {
    codec.buffered_image = TRUE;
    codec.do_block_smoothing = FALSE;
    jpeg_start_decompress(&codec);
    int status = jpeg_consume_input(&codec);
    while (status != JPEG_REACHED_EOI &&
           !(status == JPEG_SCAN_COMPLETED && hasCoarseBrightness(codec, codec.scale_denom))) {
        limitScans(reinterpret_cast<j_common_ptr>(&codec));
        status = jpeg_consume_input(&codec);
    }
    jpeg_start_output(&codec, codec.input_scan_number);
}

/// Decodes reduced to grey or to RGB.
Picture decode(Decoder &decoder, unsigned reduction, bool isGrey, Detail detail) {
    jpeg_decompress_struct &codec = decoder.codec;
    jpeg_progress_mgr progress{};
    progress.progress_monitor = limitScans;
    codec.progress = &progress;
    codec.out_color_space = isGrey ? JCS_GRAYSCALE : JCS_RGB;
    codec.scale_num = 1;
    codec.scale_denom = reduction;
    const bool isCoarse = detail == Detail::coarse && codec.progressive_mode;
    decoder.run([&] {
        if (isCoarse)
            startCoarse(codec);
        else
            jpeg_start_decompress(&codec);
    });
    const auto width = static_cast<int>(codec.output_width);
    const auto height = static_cast<int>(codec.output_height);
    ColourTags colour = jpegColour;
    colour.matrix = isGrey ? colour.matrix : 0;
    const Picture picture = makeChecked(decoder.file, width, height, isGrey ? greySamples : rgbSamples, colour);
    std::vector<JSAMPLE> buffer(isGrey ? 0 : static_cast<std::size_t>(width) * 3);
    decoder.run([&] {
        while (codec.output_scanline < codec.output_height) {
            const auto y = static_cast<int>(codec.output_scanline);
            JSAMPROW row = isGrey ? planeRow<JSAMPLE>(picture, 0, y) : buffer.data();
            jpeg_read_scanlines(&codec, &row, 1);
            if (!isGrey)
                scatterRow<JSAMPLE>(row, PixelLayout{3, Alpha::none}, picture, 0, y, width);
        }
    });
    codec.progress = nullptr;
    return picture;
}

} // namespace

Picture readJpegPreview(const InputFile &file, int width, int height) {
    const FileStream stream = streamOf(file);
    Decoder decoder(file.path());
    readHeader(decoder, stream.get());
    if (!hasBrightness(decoder.codec))
        return {};
    decoder.codec.dct_method = JDCT_IFAST;
    return decode(decoder, denominator(decoder.codec, width, height), true, Detail::coarse);
}

std::optional<ReducedImage> readReducedJpeg(const InputFile &file, const ImagePlace &place, const NeededSize &needed) {
    const FileStream stream = streamOf(file, place.begin, place.end);
    Decoder decoder(file.path());
    readHeader(decoder, stream.get());
    if (!hasBrightness(decoder.codec))
        return std::nullopt;
    ReducedImage reduced;
    reduced.whole = {static_cast<int>(decoder.codec.image_width), static_cast<int>(decoder.codec.image_height)};
    const PixelSize size = needed(reduced.whole);
    const unsigned reduction = denominator(decoder.codec, size.width, size.height);
    reduced.reduction = static_cast<int>(reduction);
    reduced.image.metadata.iccProfile = profileIn(decoder);
    reduced.image.picture = decode(decoder, reduction, decoder.codec.jpeg_color_space == JCS_GRAYSCALE, Detail::all);
    if (decoder.errors.damaged)
        decoder.fail();
    if (!matchesChannels(reduced.image.metadata.iccProfile, reduced.image.picture.format.planeCount()))
        reduced.image.metadata.iccProfile.clear();
    return reduced;
}

} // namespace lumetwin::media::images
