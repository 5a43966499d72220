// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/Pictures.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <new>
#include <optional>
#include <stdexcept>

namespace lumetwin::media::ffmpeg {

namespace {

ColourTags tags(AVColorPrimaries primaries, AVColorTransferCharacteristic transfer, AVColorSpace matrix,
                AVColorRange range, AVChromaLocation location) {
    ColourTags colour{primaries, transfer, matrix, ColourRange::unspecified, ChromaLocation::unspecified};
    if (range == AVCOL_RANGE_MPEG)
        colour.range = ColourRange::limited;
    if (range == AVCOL_RANGE_JPEG)
        colour.range = ColourRange::full;
    if (location == AVCHROMA_LOC_LEFT)
        colour.chromaLocation = ChromaLocation::left;
    if (location == AVCHROMA_LOC_CENTER)
        colour.chromaLocation = ChromaLocation::centre;
    if (location == AVCHROMA_LOC_TOPLEFT)
        colour.chromaLocation = ChromaLocation::topLeft;
    return colour;
}

AVChromaLocation location(ChromaLocation chroma) {
    switch (chroma) {
    case ChromaLocation::left:
        return AVCHROMA_LOC_LEFT;
    case ChromaLocation::centre:
        return AVCHROMA_LOC_CENTER;
    case ChromaLocation::topLeft:
        return AVCHROMA_LOC_TOPLEFT;
    case ChromaLocation::unspecified:
        break;
    }
    return AVCHROMA_LOC_UNSPECIFIED;
}

AVColorRange range(ColourRange colour) {
    switch (colour) {
    case ColourRange::limited:
        return AVCOL_RANGE_MPEG;
    case ColourRange::full:
        return AVCOL_RANGE_JPEG;
    case ColourRange::unspecified:
        break;
    }
    return AVCOL_RANGE_UNSPECIFIED;
}

bool isFullRangeFormat(AVPixelFormat format) {
    return format == AV_PIX_FMT_YUVJ420P || format == AV_PIX_FMT_YUVJ422P || format == AV_PIX_FMT_YUVJ444P ||
           format == AV_PIX_FMT_YUVJ440P || format == AV_PIX_FMT_YUVJ411P;
}

bool isRgb(AVPixelFormat format) {
    const AVPixFmtDescriptor *description = av_pix_fmt_desc_get(format);
    return description && (description->flags & AV_PIX_FMT_FLAG_RGB);
}

bool isPalette(AVPixelFormat format) {
    const AVPixFmtDescriptor *description = av_pix_fmt_desc_get(format);
    return description && (description->flags & AV_PIX_FMT_FLAG_PAL);
}

/// Grey formats that the scaler must unpack, such as grey with alpha. It assumes full range.
bool isPackedGrey(AVPixelFormat format) {
    const AVPixFmtDescriptor *description = av_pix_fmt_desc_get(format);
    return description && description->nb_components <= 2 && !isPalette(format) && !planarFormat(format) &&
           !(description->flags & AV_PIX_FMT_FLAG_BITSTREAM);
}

/// The colour tags after PictureImporter has unpacked a format: RGB becomes BT.709 with limited range, independent of
/// the file's tags. For palettes the scaler supports only BT.601.
ColourTags unpackedColour(AVPixelFormat format, ColourTags colour) {
    if (isRgb(format) || colour.matrix == AVCOL_SPC_RGB) // grey may have the RGB matrix tag
        colour.matrix = AVCOL_SPC_BT709;
    if (isPalette(format))
        colour.matrix = AVCOL_SPC_SMPTE170M;
    if (isRgb(format) || isPalette(format) || isPackedGrey(format))
        colour.range = ColourRange::limited;
    return colour;
}

constexpr AVPixelFormat unpackedFormats[] = {AV_PIX_FMT_YUV420P,   AV_PIX_FMT_YUV422P,   AV_PIX_FMT_YUV444P,
                                             AV_PIX_FMT_YUV420P10, AV_PIX_FMT_YUV422P10, AV_PIX_FMT_YUV444P10,
                                             AV_PIX_FMT_YUV444P12, AV_PIX_FMT_NONE};

} // namespace

std::optional<PictureFormat> planarFormat(AVPixelFormat format) {
    const AVPixFmtDescriptor *description = av_pix_fmt_desc_get(format);
    constexpr auto unusable = AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM |
                              AV_PIX_FMT_FLAG_HWACCEL | AV_PIX_FMT_FLAG_FLOAT | AV_PIX_FMT_FLAG_BE;
    if (!description || (description->flags & unusable))
        return std::nullopt;
    const int depth = description->comp[0].depth;
    if (depth < 8 || depth > 16)
        return std::nullopt;
    const int components = description->nb_components;
    const bool grey = components <= 2;
    for (int index = 0; index < (grey ? 1 : 3); ++index) {
        const AVComponentDescriptor &component = description->comp[index];
        if (component.plane != index || component.shift != 0 || component.depth != depth ||
            component.step != (depth > 8 ? 2 : 1))
            return std::nullopt;
    }
    if (grey)
        return PictureFormat{ColourModel::grey, depth, 0, 0};
    return PictureFormat{ColourModel::yuv, depth, description->log2_chroma_w, description->log2_chroma_h};
}

PictureFormat importedFormat(AVPixelFormat format) {
    if (const auto planar = planarFormat(format))
        return *planar;
    const AVPixFmtDescriptor *description = av_pix_fmt_desc_get(format);
    if (!description)
        return yuv420;
    const AVPixelFormat unpacked = avcodec_find_best_pix_fmt_of_list(unpackedFormats, format, 0, nullptr);
    return planarFormat(unpacked).value_or(yuv420);
}

AVPixelFormat pixelFormat(const PictureFormat &format) {
    if (format == PictureFormat{ColourModel::yuv, 8, 1, 1})
        return AV_PIX_FMT_YUV420P;
    if (format == PictureFormat{ColourModel::yuv, 10, 1, 1})
        return AV_PIX_FMT_YUV420P10;
    throw std::logic_error("only 4:2:0 pictures of 8 or 10 bits are encoded");
}

ColourTags colourTags(const AVFrame &frame) {
    ColourTags colour =
        tags(frame.color_primaries, frame.color_trc, frame.colorspace, frame.color_range, frame.chroma_location);
    if (isFullRangeFormat(static_cast<AVPixelFormat>(frame.format)))
        colour.range = ColourRange::full;
    return colour;
}

ColourTags colourTags(const AVCodecParameters &parameters) {
    ColourTags colour = tags(parameters.color_primaries, parameters.color_trc, parameters.color_space,
                             parameters.color_range, parameters.chroma_location);
    if (isFullRangeFormat(static_cast<AVPixelFormat>(parameters.format)))
        colour.range = ColourRange::full;
    return unpackedColour(static_cast<AVPixelFormat>(parameters.format), colour);
}

void setColour(AVCodecContext &codec, const ColourTags &colour) {
    codec.color_primaries = static_cast<AVColorPrimaries>(colour.primaries);
    codec.color_trc = static_cast<AVColorTransferCharacteristic>(colour.transfer);
    codec.colorspace = static_cast<AVColorSpace>(colour.matrix);
    codec.color_range = range(colour.range);
    codec.chroma_sample_location = location(colour.chromaLocation);
}

void setColour(AVCodecParameters &parameters, const ColourTags &colour) {
    parameters.color_primaries = static_cast<AVColorPrimaries>(colour.primaries);
    parameters.color_trc = static_cast<AVColorTransferCharacteristic>(colour.transfer);
    parameters.color_space = static_cast<AVColorSpace>(colour.matrix);
    parameters.color_range = range(colour.range);
    parameters.chroma_location = location(colour.chromaLocation);
}

Picture PictureImporter::import(FramePointer frame) {
    auto format = planarFormat(static_cast<AVPixelFormat>(frame->format));
    if (!format) {
        frame = unpacked(*frame);
        format = planarFormat(static_cast<AVPixelFormat>(frame->format));
    }
    Picture picture;
    picture.width = frame->width;
    picture.height = frame->height;
    picture.format = *format;
    picture.colour = colourTags(*frame);
    for (int plane = 0; plane < format->planeCount(); ++plane)
        picture.planes[plane] = {frame->data[plane], frame->linesize[plane]};
    picture.storage = std::shared_ptr<AVFrame>(std::move(frame));
    return picture;
}

FramePointer PictureImporter::unpacked(const AVFrame &frame) {
    const auto source = static_cast<AVPixelFormat>(frame.format);
    const AVPixelFormat target = avcodec_find_best_pix_fmt_of_list(unpackedFormats, source, 0, nullptr);
    FramePointer result = makeFrame();
    result->format = target;
    result->width = frame.width;
    result->height = frame.height;
    if (av_frame_get_buffer(result.get(), 0) < 0 || av_frame_copy_props(result.get(), &frame) < 0)
        throw std::bad_alloc();
    scaler_.reset(sws_getCachedContext(scaler_.release(), frame.width, frame.height, source, frame.width, frame.height,
                                       target, SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr, nullptr,
                                       nullptr));
    if (!scaler_)
        throw std::runtime_error(std::string("pixel format not supported: ") + av_get_pix_fmt_name(source));
    if (isRgb(source)) {
        const int *coefficients = sws_getCoefficients(SWS_CS_ITU709);
        sws_setColorspaceDetails(scaler_.get(), coefficients, 1, coefficients, 0, 0, 1 << 16, 1 << 16);
    }
    const ColourTags colour = unpackedColour(source, colourTags(frame));
    result->colorspace = static_cast<AVColorSpace>(colour.matrix);
    result->color_range = range(colour.range);
    sws_scale(scaler_.get(), frame.data, frame.linesize, 0, frame.height, result->data, result->linesize);
    return result;
}

FramePointer frameOf(const Picture &picture) {
    FramePointer frame = makeFrame();
    frame->format = pixelFormat(picture.format);
    frame->width = picture.width;
    frame->height = picture.height;
    for (int plane = 0; plane < 3; ++plane) {
        frame->data[plane] = picture.planes[plane].data;
        frame->linesize[plane] = static_cast<int>(picture.planes[plane].stride);
    }
    auto *holder = new std::shared_ptr<void>(picture.storage);
    frame->buf[0] = av_buffer_create(
        picture.planes[0].data, 1,
        [](void *opaque, std::uint8_t *) { delete static_cast<std::shared_ptr<void> *>(opaque); }, holder,
        AV_BUFFER_FLAG_READONLY);
    if (!frame->buf[0]) {
        delete holder;
        throw std::bad_alloc();
    }
    frame->color_primaries = static_cast<AVColorPrimaries>(picture.colour.primaries);
    frame->color_trc = static_cast<AVColorTransferCharacteristic>(picture.colour.transfer);
    frame->colorspace = static_cast<AVColorSpace>(picture.colour.matrix);
    frame->color_range = range(picture.colour.range);
    frame->chroma_location = location(picture.colour.chromaLocation);
    return frame;
}

} // namespace lumetwin::media::ffmpeg
