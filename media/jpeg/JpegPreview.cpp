// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/jpeg/JpegPreview.h"

#include "media/Image.h"
#include "media/jpeg/JpegErrors.h"
#include "media/samples/FileStream.h"
#include "media/samples/Limits.h"

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

    template <typename Step> void run(const Step &step) {
        if (!succeeds(errors, step))
            throw MediaError(file, MediaOperation::read, errors.code, errors.reason(), errors.message);
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

} // namespace

Picture readJpegPreview(const InputFile &file, int width, int height) {
    const FileStream stream = streamOf(file);
    Decoder decoder(file.path());
    jpeg_decompress_struct &codec = decoder.codec;
    jpeg_progress_mgr progress{};
    progress.progress_monitor = limitScans;
    decoder.run([&] {
        jpeg_stdio_src(&codec, stream.get());
        jpeg_read_header(&codec, TRUE);
    });
    checkSize(file.path(), codec.image_width, codec.image_height);
    if (!hasBrightness(codec))
        return {};
    codec.progress = &progress;
    codec.out_color_space = JCS_GRAYSCALE;
    codec.dct_method = JDCT_IFAST;
    codec.scale_num = 1;
    codec.scale_denom = denominator(codec, width, height);
    decoder.run([&] { jpeg_start_decompress(&codec); });
    const Picture picture =
        makeChecked(file.path(), static_cast<int>(codec.output_width), static_cast<int>(codec.output_height),
                    {ColourModel::grey, 8, 0, 0}, jpegColour);
    decoder.run([&] {
        while (codec.output_scanline < codec.output_height) {
            JSAMPROW row = picture.planes[0].data + codec.output_scanline * picture.planes[0].stride;
            jpeg_read_scanlines(&codec, &row, 1);
        }
    });
    return picture;
}

} // namespace lumetwin::media::images
