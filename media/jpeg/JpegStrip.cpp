// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/jpeg/JpegStrip.h"

#include "media/MediaError.h"
#include "media/jpeg/JpegErrors.h"
#include "media/jpeg/StereoSegments.h"
#include "media/samples/Rows.h"

#include <algorithm>
#include <cstring>

namespace lumetwin::media::images {

namespace {

constexpr std::size_t markerRoom = 65533; // bytes of a marker segment after its length field
constexpr char exifMark[] = "Exif\0";
constexpr char xmpMark[] = "http://ns.adobe.com/xap/1.0/";

struct Encoder {
    JpegErrors errors;
    jpeg_compress_struct codec{};
    const std::filesystem::path &file;
    bool created = false;

    explicit Encoder(const std::filesystem::path &path) : file(path) {
        codec.err = &errors.manager;
        codec.client_data = &errors;
        run([&] { jpeg_create_compress(&codec); });
        created = true;
    }
    ~Encoder() {
        if (created)
            jpeg_destroy_compress(&codec);
    }
    Encoder(const Encoder &) = delete;

    template <typename Step> void run(const Step &step) {
        if (!succeeds(errors, step))
            throw MediaError(file, MediaOperation::write, errors.code, MediaReason::encoderFailed, errors.message);
    }
};

/// The content of a marker segment: its identifier, then its data. Empty when it is too large for a segment.
template <std::size_t size, typename Bytes> std::vector<JOCTET> segment(const char (&mark)[size], const Bytes &bytes) {
    std::vector<JOCTET> content;
    if (std::size(bytes) == 0 || std::size(bytes) + size > markerRoom)
        return content;
    content.resize(size + std::size(bytes));
    std::memcpy(content.data(), mark, size);
    std::memcpy(content.data() + size, std::data(bytes), std::size(bytes));
    return content;
}

void writeMetadata(Encoder &encoder, const ImageMetadata &metadata) {
    for (const auto &content : {segment(exifMark, metadata.exif), segment(xmpMark, metadata.xmp)})
        if (!content.empty())
            encoder.run([&] {
                jpeg_write_marker(&encoder.codec, JPEG_APP0 + 1, content.data(), static_cast<unsigned>(content.size()));
            });
    const auto &profile = metadata.iccProfile;
    if (!profile.empty())
        encoder.run(
            [&] { jpeg_write_icc_profile(&encoder.codec, profile.data(), static_cast<unsigned>(profile.size())); });
}

void writePacking(Encoder &encoder, const StereoPacking &packing) {
    const std::vector<std::uint8_t> content = jpsContent(packing);
    encoder.run([&] {
        jpeg_write_marker(&encoder.codec, JPEG_APP0 + 3, content.data(), static_cast<unsigned>(content.size()));
    });
}

J_COLOR_SPACE spaceOf(ColourModel model) {
    switch (model) {
    case ColourModel::grey:
        return JCS_GRAYSCALE;
    case ColourModel::yuv:
        return JCS_YCbCr;
    case ColourModel::rgb:
        break;
    }
    return JCS_RGB;
}

/// Above this quality RGB pictures keep full colour resolution.
constexpr int fullChromaQuality = 90;

/// The number of luma samples for each chroma sample.
JpegSize samplingFactors(const PictureFormat &format, int quality) {
    if (format.model == ColourModel::grey)
        return {1, 1};
    if (format.model == ColourModel::yuv)
        return {1 << std::min(format.chromaShiftX, 1), 1 << format.chromaShiftY};
    return quality < fullChromaQuality ? JpegSize{2, 2} : JpegSize{1, 1};
}

void setUp(Encoder &encoder, const Picture &picture, int quality) {
    jpeg_compress_struct &codec = encoder.codec;
    codec.image_width = static_cast<JDIMENSION>(picture.width);
    codec.image_height = static_cast<JDIMENSION>(picture.height);
    codec.input_components = picture.format.planeCount();
    codec.in_color_space = spaceOf(picture.format.model);
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, quality, TRUE);
    codec.optimize_coding = FALSE; // would save 1 % of the size for 33 % more time
    const JpegSize factors = samplingFactors(picture.format, quality);
    codec.comp_info[0].h_samp_factor = factors.width;
    codec.comp_info[0].v_samp_factor = factors.height;
}

/// A band of rows, extended to whole blocks of the library by repeating its edges.
class Band {
public:
    Band(const Picture &picture, int plane, int rows)
        : picture_(picture), plane_(plane), rows_(rows), width_((picture.planeWidth(plane) + 15) / 16 * 16),
          samples_(static_cast<std::size_t>(width_) * rows), pointers_(rows) {
        for (int row = 0; row < rows; ++row)
            pointers_[row] = samples_.data() + static_cast<std::ptrdiff_t>(row) * width_;
    }

    void load(int first) {
        const int width = picture_.planeWidth(plane_);
        for (int row = 0; row < rows_; ++row) {
            const int from = std::min(first + row, picture_.planeHeight(plane_) - 1);
            const JSAMPLE *source = planeRow<JSAMPLE>(picture_, plane_, from);
            std::copy_n(source, width, pointers_[row]);
            std::fill(pointers_[row] + width, pointers_[row] + width_, source[width - 1]);
        }
    }

    JSAMPARRAY rows() { return pointers_.data(); }

private:
    const Picture &picture_;
    int plane_;
    int rows_;
    int width_;
    std::vector<JSAMPLE> samples_;
    std::vector<JSAMPROW> pointers_;
};

void writePlanes(Encoder &encoder, const Picture &picture) {
    jpeg_compress_struct &codec = encoder.codec;
    const int lines = DCTSIZE << picture.format.chromaShiftY;
    std::vector<Band> bands;
    bands.reserve(3);
    JSAMPARRAY planes[3] = {};
    for (int plane = 0; plane < 3; ++plane)
        bands.emplace_back(picture, plane, lines >> picture.format.shiftY(plane));
    for (int plane = 0; plane < 3; ++plane)
        planes[plane] = bands[static_cast<std::size_t>(plane)].rows();
    for (int y = 0; y < picture.height; y += lines) {
        for (int plane = 0; plane < 3; ++plane)
            bands[static_cast<std::size_t>(plane)].load(y >> picture.format.shiftY(plane));
        encoder.run([&] { jpeg_write_raw_data(&codec, planes, static_cast<JDIMENSION>(lines)); });
    }
}

void writeRows(Encoder &encoder, const Picture &picture) {
    std::vector<JSAMPLE> buffer(static_cast<std::size_t>(picture.width) * picture.format.planeCount());
    for (int y = 0; y < picture.height; ++y) {
        gatherRow(picture, y, buffer.data());
        JSAMPROW row = buffer.data();
        encoder.run([&] { jpeg_write_scanlines(&encoder.codec, &row, 1); });
    }
}

} // namespace

JpegSize jpegUnit(const PictureFormat &format, int quality) {
    const JpegSize factors = samplingFactors(format, quality);
    return {DCTSIZE * factors.width, DCTSIZE * factors.height};
}

JpegBytes codedStrip(const JpegStrip &strip, int quality, const std::filesystem::path &file) {
    Encoder encoder(file);
    unsigned char *bytes = nullptr;
    unsigned long size = 0;
    encoder.run([&] { jpeg_mem_dest(&encoder.codec, &bytes, &size); });
    encoder.run([&] { setUp(encoder, strip.picture, quality); });
    const bool planes = strip.picture.format.model == ColourModel::yuv;
    encoder.codec.raw_data_in = planes ? TRUE : FALSE;
    encoder.codec.restart_interval = strip.restartInterval;
    encoder.run([&] { jpeg_start_compress(&encoder.codec, TRUE); });
    if (strip.metadata)
        writeMetadata(encoder, *strip.metadata);
    if (strip.packing)
        writePacking(encoder, *strip.packing);
    if (planes)
        writePlanes(encoder, strip.picture);
    else
        writeRows(encoder, strip.picture);
    encoder.run([&] { jpeg_finish_compress(&encoder.codec); });
    return {std::unique_ptr<std::uint8_t, JpegBytes::Free>(bytes), size};
}

} // namespace lumetwin::media::images
