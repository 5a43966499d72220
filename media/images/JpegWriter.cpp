// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/MediaError.h"
#include "media/images/Formats.h"
#include "media/images/JpegErrors.h"
#include "media/images/Rows.h"

#include <algorithm>
#include <array>
#include <cmath>
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
            throw MediaError(file, "Cannot write", errors.code, errors.message);
    }
};

/// A marker segment's content: its mark, then its data; empty when that is more than a segment holds.
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

void setUp(Encoder &encoder, const Picture &picture, int quality) {
    jpeg_compress_struct &codec = encoder.codec;
    codec.image_width = static_cast<JDIMENSION>(picture.width);
    codec.image_height = static_cast<JDIMENSION>(picture.height);
    codec.input_components = picture.format.planeCount();
    codec.in_color_space = spaceOf(picture.format.model);
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, quality, TRUE);
    codec.optimize_coding = FALSE; // it would save a hundredth of the size for a third of the time
    if (picture.format.model == ColourModel::grey)
        return;
    const bool planes = picture.format.model == ColourModel::yuv;
    const int half = quality < fullChromaQuality ? 2 : 1;
    codec.comp_info[0].h_samp_factor = planes ? 1 << picture.format.chromaShiftX : half;
    codec.comp_info[0].v_samp_factor = planes ? 1 << picture.format.chromaShiftY : half;
}

/// A band of rows that is as wide and high as the library's blocks, its edges repeated.
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

int jpegQuality(double quality) {
    // Straight lines between points that were chosen by looking: 0.75 shows no blocks at reading distance.
    constexpr std::array<std::array<double, 2>, 4> points{{{0, 10}, {0.5, 72}, {0.75, 86}, {1, 100}}};
    const double wanted = std::clamp(std::isnan(quality) ? 1.0 : quality, 0.0, 1.0);
    for (std::size_t i = 1; i < points.size(); ++i)
        if (wanted <= points[i][0]) {
            const double part = (wanted - points[i - 1][0]) / (points[i][0] - points[i - 1][0]);
            return static_cast<int>(std::lround(points[i - 1][1] + part * (points[i][1] - points[i - 1][1])));
        }
    return 100;
}

void writeJpeg(const std::filesystem::path &file, const StillImage &image, double quality) {
    const Picture &picture = image.picture;
    if (picture.format.depth != 8)
        throw MediaError(file, "Cannot write", 0, "JPEG holds 8-bit samples only");
    if (picture.width > JPEG_MAX_DIMENSION || picture.height > JPEG_MAX_DIMENSION)
        throw MediaError(file, "Cannot write", 0, "the image is larger than a JPEG file can be");
    StandardFile stream = openForWriting(file);
    Encoder encoder(file);
    encoder.run([&] { jpeg_stdio_dest(&encoder.codec, stream.get()); });
    encoder.run([&] { setUp(encoder, picture, jpegQuality(quality)); });
    const bool planes = picture.format.model == ColourModel::yuv;
    encoder.codec.raw_data_in = planes ? TRUE : FALSE;
    encoder.run([&] { jpeg_start_compress(&encoder.codec, TRUE); });
    writeMetadata(encoder, image.metadata);
    if (planes)
        writePlanes(encoder, picture);
    else
        writeRows(encoder, picture);
    encoder.run([&] { jpeg_finish_compress(&encoder.codec); });
    closeWritten(std::move(stream), file);
}

} // namespace lumetwin::media::images
