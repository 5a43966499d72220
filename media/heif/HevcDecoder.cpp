// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/HevcDecoder.h"

#include "media/ffmpeg/Ffmpeg.h"

#include <libheif/heif.h>

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <array>
#include <cstring>
#include <exception>
#include <new>
#include <vector>

namespace lumetwin::media::images {

namespace {

constexpr int priority = 200; // higher than the library's own decoders, which have at most 100
constexpr std::array<std::uint8_t, 4> startCode{0, 0, 0, 1};

constexpr heif_error success{heif_error_Ok, heif_suberror_Unspecified, "Success"};

heif_error failure(const char *reason, heif_suberror_code part = heif_suberror_Unspecified) {
    return {heif_error_Decoder_plugin_error, part, reason};
}

constexpr heif_error noMemory{heif_error_Memory_allocation_error, heif_suberror_Unspecified, "not enough memory"};

/// The NAL units of one picture, in Annex B format.
struct FrameDecoding {
    std::vector<std::uint8_t> stream;
};

FrameDecoding &frameDecodingOf(void *decoder) {
    return *static_cast<FrameDecoding *>(decoder);
}

const char *pluginName() {
    return "HEVC through FFmpeg";
}

int supports(heif_compression_format format) {
    return format == heif_compression_HEVC ? priority : 0;
}

/// Only where it is asked for.
int supportsRoughly(heif_compression_format format) {
    return format == heif_compression_HEVC ? 1 : 0;
}

heif_error newDecoder(void **decoder) {
    *decoder = new (std::nothrow) FrameDecoding;
    return *decoder ? success : noMemory;
}

void freeDecoder(void *decoder) {
    delete static_cast<FrameDecoding *>(decoder);
}

/// Parameter sets and slices come with length prefixes, as in the file.
heif_error push(void *decoder, const void *data, std::size_t size) {
    try {
        std::vector<std::uint8_t> &stream = frameDecodingOf(decoder).stream;
        const auto *bytes = static_cast<const std::uint8_t *>(data);
        while (size > 0) {
            if (size < 4)
                return failure("a picture ends early", heif_suberror_End_of_data);
            const std::size_t length =
                std::size_t{bytes[0]} << 24 | std::size_t{bytes[1]} << 16 | std::size_t{bytes[2]} << 8 | bytes[3];
            if (length > size - 4)
                return failure("a picture ends early", heif_suberror_End_of_data);
            stream.insert(stream.end(), startCode.begin(), startCode.end());
            stream.insert(stream.end(), bytes + 4, bytes + 4 + length);
            bytes += 4 + length;
            size -= 4 + length;
        }
        return success;
    } catch (const std::bad_alloc &) {
        return noMemory;
    }
}

enum class LoopFilter { applied, leftOut };

ffmpeg::FramePointer decoded(const std::vector<std::uint8_t> &stream, LoopFilter filter) {
    const AVCodec *codec = avcodec_find_decoder(AV_CODEC_ID_HEVC);
    const ffmpeg::Codec context(codec ? avcodec_alloc_context3(codec) : nullptr);
    const ffmpeg::Packet packet = ffmpeg::makePacket();
    ffmpeg::FramePointer frame = ffmpeg::makeFrame();
    if (!context || av_new_packet(packet.get(), static_cast<int>(stream.size())) < 0)
        return nullptr;
    std::memcpy(packet->data, stream.data(), stream.size());
    // Tiles and both eyes are already decoded in parallel.
    context->thread_count = 1;
    if (filter == LoopFilter::leftOut)
        context->skip_loop_filter = AVDISCARD_ALL;
    if (avcodec_open2(context.get(), codec, nullptr) < 0 || avcodec_send_packet(context.get(), packet.get()) < 0)
        return nullptr;
    avcodec_send_packet(context.get(), nullptr); // end of stream: the decoder returns delayed pictures
    return avcodec_receive_frame(context.get(), frame.get()) < 0 ? nullptr : std::move(frame);
}

struct Layout {
    heif_colorspace space;
    heif_chroma chroma;
    int planes;
    int depth;
    int shiftX;
    int shiftY;
};

/// The layout of planar grey, Y'CbCr and GBR with up to 16 bits in native byte order; `planes` is 0 for other formats.
Layout layoutOf(const AVFrame &frame) {
    const AVPixFmtDescriptor *format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    Layout layout{heif_colorspace_YCbCr, heif_chroma_undefined, 0, 8, 0, 0};
    if (!format || (format->nb_components != 1 && format->nb_components != 3))
        return layout;
    const bool planar = format->nb_components == 1 || (format->flags & AV_PIX_FMT_FLAG_PLANAR) != 0;
    const bool foreign = (format->flags & AV_PIX_FMT_FLAG_BE) != 0;
    if (!planar || foreign || (format->comp[0].depth > 8 && format->comp[0].step != 2))
        return layout;
    layout.depth = format->comp[0].depth;
    layout.shiftX = format->log2_chroma_w;
    layout.shiftY = format->log2_chroma_h;
    if (format->nb_components == 1)
        return {heif_colorspace_monochrome, heif_chroma_monochrome, 1, layout.depth, 0, 0};
    if (layout.shiftX == 1 && layout.shiftY == 1)
        layout.chroma = heif_chroma_420;
    else if (layout.shiftX == 1 && layout.shiftY == 0)
        layout.chroma = heif_chroma_422;
    else if (layout.shiftX == 0 && layout.shiftY == 0)
        layout.chroma = heif_chroma_444;
    else
        return layout;
    layout.planes = 3;
    return layout;
}

heif_error copyPlane(const AVFrame &frame, const Layout &layout, int plane, heif_image *image) {
    constexpr std::array channels{heif_channel_Y, heif_channel_Cb, heif_channel_Cr};
    const heif_channel channel = channels[static_cast<std::size_t>(plane)];
    const int width = plane == 0 ? frame.width : (frame.width + (1 << layout.shiftX) - 1) >> layout.shiftX;
    const int height = plane == 0 ? frame.height : (frame.height + (1 << layout.shiftY) - 1) >> layout.shiftY;
    const heif_error added = heif_image_add_plane(image, channel, width, height, layout.depth);
    if (added.code != heif_error_Ok)
        return added;
    int stride = 0;
    std::uint8_t *target = heif_image_get_plane(image, channel, &stride);
    const auto row = static_cast<std::size_t>(width) * (layout.depth > 8 ? 2 : 1);
    for (int y = 0; y < height; ++y)
        std::memcpy(target + static_cast<std::ptrdiff_t>(y) * stride,
                    frame.data[plane] + static_cast<std::ptrdiff_t>(y) * frame.linesize[plane], row);
    return success;
}

void tag(const AVFrame &frame, heif_image *image) {
    heif_color_profile_nclx *colour = heif_nclx_color_profile_alloc();
    if (!colour)
        return;
    // For code points that libheif does not know, its default "unspecified" stays.
    heif_nclx_color_profile_set_color_primaries(colour, static_cast<std::uint16_t>(frame.color_primaries));
    heif_nclx_color_profile_set_transfer_characteristics(colour, static_cast<std::uint16_t>(frame.color_trc));
    heif_nclx_color_profile_set_matrix_coefficients(colour, static_cast<std::uint16_t>(frame.colorspace));
    colour->full_range_flag = frame.color_range == AVCOL_RANGE_JPEG;
    heif_image_set_nclx_color_profile(image, colour);
    heif_nclx_color_profile_free(colour);
}

/// Exceptions must not pass through libheif.
ffmpeg::FramePointer decodedSafely(const std::vector<std::uint8_t> &stream, LoopFilter filter) {
    try {
        return decoded(stream, filter);
    } catch (const std::exception &) {
        return nullptr;
    }
}

template <LoopFilter filter> heif_error decodeFrame(void *decoder, heif_image **result) {
    const ffmpeg::FramePointer frame = decodedSafely(frameDecodingOf(decoder).stream, filter);
    if (!frame)
        return failure("a picture is damaged", heif_suberror_Decompression_invalid_data);
    const Layout layout = layoutOf(*frame);
    if (layout.planes == 0)
        return {heif_error_Unsupported_feature, heif_suberror_Unsupported_color_conversion,
                "this format of samples is not supported"};
    heif_image *image = nullptr;
    heif_error error = heif_image_create(frame->width, frame->height, layout.space, layout.chroma, &image);
    for (int plane = 0; plane < layout.planes && error.code == heif_error_Ok; ++plane)
        error = copyPlane(*frame, layout, plane, image);
    if (error.code != heif_error_Ok) {
        heif_image_release(image);
        return error;
    }
    tag(*frame, image);
    *result = image;
    return success;
}

constexpr heif_decoder_plugin plugin{
    .plugin_api_version = 3,
    .get_plugin_name = pluginName,
    .init_plugin = nullptr,
    .deinit_plugin = nullptr,
    .does_support_format = supports,
    .new_decoder = newDecoder,
    .free_decoder = freeDecoder,
    .push_data = push,
    .decode_image = decodeFrame<LoopFilter::applied>,
    .set_strict_decoding = nullptr,
    .id_name = "lumetwin-hevc",
};

constexpr heif_decoder_plugin roughPlugin = [] {
    heif_decoder_plugin rough = plugin;
    rough.does_support_format = supportsRoughly;
    rough.decode_image = decodeFrame<LoopFilter::leftOut>;
    rough.id_name = roughHevcDecoderName;
    return rough;
}();

} // namespace

const heif_decoder_plugin *hevcDecoder() {
    return &plugin;
}

const heif_decoder_plugin *roughHevcDecoder() {
    return &roughPlugin;
}

} // namespace lumetwin::media::images
