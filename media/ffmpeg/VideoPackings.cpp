// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/VideoPackings.h"

#include "media/StereoMovieFacts.h"
#include "media/ffmpeg/Input.h"
#include "media/hevc/FramePacking.h"

extern "C" {
#include <libavutil/dovi_meta.h>
#include <libavutil/spherical.h>
#include <libavutil/stereo3d.h>
}

#include <cmath>
#include <string_view>
#include <vector>

namespace lumetwin::media {

namespace {

using Arrangement = StereoPacking::Arrangement;
using Packing = std::optional<StereoPacking>;
using ffmpeg::Packet;

// Of the packets before the first one of the video track, as many are read at most.
constexpr int mostPackets = 1000;

bool isOf(const AVFormatContext &input, std::string_view demuxer) {
    return std::string_view(input.iformat->name).find(demuxer) != std::string_view::npos;
}

bool isPicture(const AVStream &stream) {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !(stream.disposition & AV_DISPOSITION_ATTACHED_PIC);
}

/// The data that a container gives with a stream, nullptr where it is missing or smaller than its type.
template <typename Data> const Data *sideData(const AVStream &stream, AVPacketSideDataType type) {
    const AVPacketSideData *data =
        av_packet_side_data_get(stream.codecpar->coded_side_data, stream.codecpar->nb_coded_side_data, type);
    return data && data->size >= sizeof(Data) ? reinterpret_cast<const Data *>(data->data) : nullptr;
}

double pixelAspect(const AVStream &stream) {
    const AVRational ratio =
        stream.sample_aspect_ratio.num ? stream.sample_aspect_ratio : stream.codecpar->sample_aspect_ratio;
    return ratio.num > 0 && ratio.den > 0 ? av_q2d(ratio) : 1;
}

/// Whether an eye of that shape, width by height, may be what a squeezed one was. A lying size makes a full eye twice
/// as wide beside another, and half as wide above another, so that little more than a square is too narrow there.
bool isPlausible(Arrangement arrangement, double shape) {
    const double least = arrangement == Arrangement::overUnder ? 1.25 : 0.5;
    constexpr double most = 2.6;
    return shape >= least && shape <= most;
}

/// Whether the eyes are squeezed, by the shape in which the whole frame is shown. Where the pixels are about twice as
/// wide as high (over-under: as high as wide), the frame has the shape of two whole eyes. Some writers put the size of
/// both eyes where Matroska wants that of one (RFC 9559, 18.10), so an eye must also come out in a usual shape.
bool isSqueezed(Arrangement arrangement, const AVStream &stream) {
    if (stream.codecpar->width <= 0 || stream.codecpar->height <= 0)
        return false;
    const double aspect = pixelAspect(stream);
    const double frame = aspect * stream.codecpar->width / stream.codecpar->height;
    // Discs have pixels of up to 1.46 : 1.
    const auto isNearTwo = [](double ratio) { return ratio > 1.6 && ratio < 3; };
    if (arrangement == Arrangement::sideBySide)
        return isNearTwo(aspect) && isPlausible(arrangement, frame / 2);
    return arrangement == Arrangement::overUnder && isNearTwo(1 / aspect) && isPlausible(arrangement, frame * 2);
}

/// StereoMode (RFC 9559, 5.1.4.1.28.3) as FFmpeg has it. In H.264, both eyes in one block are two views of one stream.
Packing matroskaPacking(const AVStream &stream) {
    const auto *stereo = sideData<AVStereo3D>(stream, AV_PKT_DATA_STEREO3D);
    if (!stereo)
        return std::nullopt;
    const bool inverted = stereo->flags & AV_STEREO3D_FLAG_INVERT;
    switch (stereo->type) {
    case AV_STEREO3D_SIDEBYSIDE:
        return StereoPacking{Arrangement::sideBySide, inverted, false};
    case AV_STEREO3D_TOPBOTTOM:
        return StereoPacking{Arrangement::overUnder, inverted, false};
    case AV_STEREO3D_FRAMESEQUENCE:
        return StereoPacking{stream.codecpar->codec_id == AV_CODEC_ID_H264 ? Arrangement::secondUnread
                                                                           : Arrangement::alternating,
                             inverted, false};
    case AV_STEREO3D_CHECKERBOARD:
    case AV_STEREO3D_LINES:
    case AV_STEREO3D_COLUMNS:
        return StereoPacking{Arrangement::interleaved, inverted, false};
    default:
        return std::nullopt;
    }
}

/// `vexu` and `st3d` of a movie; the first is the newer one and says more.
Packing moviePacking(const StereoMovieFacts &facts) {
    constexpr std::uint8_t reversed = 8; // bit of stri
    if (facts.multiviewAvc)
        return StereoPacking{Arrangement::secondUnread, false, false};
    if (facts.packing == "side" || facts.packing == "over")
        return StereoPacking{facts.packing == "side" ? Arrangement::sideBySide : Arrangement::overUnder,
                             (facts.eyes.value_or(0) & reversed) != 0, false};
    switch (facts.frameMode.value_or(0)) {
    case 1:
        return StereoPacking{Arrangement::overUnder, false, false};
    case 2:
        return StereoPacking{Arrangement::sideBySide, false, false};
    case 4:
        return StereoPacking{Arrangement::sideBySide, true, false};
    default:
        return std::nullopt;
    }
}

/// The first packet of a stream; empty when there is none.
Packet firstPacket(AVFormatContext &input, int index) {
    for (unsigned other = 0; other < input.nb_streams; ++other)
        if (static_cast<int>(other) != index)
            input.streams[other]->discard = AVDISCARD_ALL;
    for (int count = 0; count < mostPackets; ++count) {
        Packet packet = ffmpeg::makePacket();
        if (av_read_frame(&input, packet.get()) < 0)
            break;
        if (packet->stream_index == index)
            return packet;
    }
    return nullptr;
}

std::optional<hevc::FramePacking> streamPacking(AVFormatContext &input, const AVStream &stream) {
    const AVCodecParameters &codec = *stream.codecpar;
    if (codec.codec_id != AV_CODEC_ID_H264 && codec.codec_id != AV_CODEC_ID_HEVC)
        return std::nullopt;
    const hevc::NalBytes configuration{codec.extradata, static_cast<std::size_t>(codec.extradata_size)};
    const Packet packet = firstPacket(input, stream.index);
    const bool readable = packet && !ffmpeg::isEncrypted(*packet);
    const hevc::NalBytes sample =
        readable ? hevc::NalBytes{packet->data, static_cast<std::size_t>(packet->size)} : hevc::NalBytes{};
    return hevc::packingOfStream(codec.codec_id == AV_CODEC_ID_H264 ? hevc::Coding::avc : hevc::Coding::hevc,
                                 configuration, sample);
}

/// The enhancement layer of a film with a wider range is a second stream, but no second eye.
bool isEnhancement(const AVStream &stream) {
    const auto *layers = sideData<AVDOVIDecoderConfigurationRecord>(stream, AV_PKT_DATA_DOVI_CONF);
    return layers && layers->el_present_flag && !layers->bl_present_flag;
}

/// Whether two streams are as long as each other, but for one frame.
bool areEquallyLong(const AVStream &first, const AVStream &second) {
    if (first.duration == AV_NOPTS_VALUE || second.duration == AV_NOPTS_VALUE)
        return first.duration == second.duration;
    const AVRational rate = first.avg_frame_rate;
    const double frame = rate.num > 0 && rate.den > 0 ? 1 / av_q2d(rate) : 0;
    const double difference = static_cast<double>(first.duration) * av_q2d(first.time_base) -
                              static_cast<double>(second.duration) * av_q2d(second.time_base);
    return std::abs(difference) <= 1.001 * frame;
}

bool isEqual(const AVStream &first, const AVStream &second) {
    const AVCodecParameters &a = *first.codecpar;
    const AVCodecParameters &b = *second.codecpar;
    return a.codec_id == b.codec_id && a.width == b.width && a.height == b.height &&
           av_cmp_q(first.avg_frame_rate, second.avg_frame_rate) == 0 && areEquallyLong(first, second);
}

std::string projectionOf(const AVStream &stream) {
    const auto *mapping = sideData<AVSphericalMapping>(stream, AV_PKT_DATA_SPHERICAL);
    if (!mapping)
        return {};
    switch (mapping->projection) {
    case AV_SPHERICAL_RECTILINEAR:
        return "rect";
    case AV_SPHERICAL_EQUIRECTANGULAR:
    case AV_SPHERICAL_EQUIRECTANGULAR_TILE:
        return "equi";
    case AV_SPHERICAL_HALF_EQUIRECTANGULAR:
        return "hequ";
    case AV_SPHERICAL_FISHEYE:
        return "fish";
    default:
        return "cube";
    }
}

const AVStream *firstPictures(const AVFormatContext &input) {
    for (unsigned index = 0; index < input.nb_streams; ++index)
        if (isPicture(*input.streams[index]))
            return input.streams[index];
    return nullptr;
}

std::optional<int> streamLike(const AVFormatContext &input, const AVStream &first) {
    for (unsigned index = 0; index < input.nb_streams; ++index) {
        const AVStream &stream = *input.streams[index];
        if (&stream != &first && isPicture(stream) && isEqual(first, stream) && !isEnhancement(stream))
            return stream.index;
    }
    return std::nullopt;
}

/// Adds what the shape of the pixels says. The container's headers may leave it to the stream, which is then read, too.
void addShape(const InputFile &file, const AVStream &stream, const std::vector<StereoPacking *> &packings) {
    std::optional<ffmpeg::Input> whole;
    if (!packings.empty() && stream.sample_aspect_ratio.num == 0)
        whole.emplace(file);
    const AVStream *shown = whole ? firstPictures(**whole) : &stream;
    for (StereoPacking *packing : packings)
        packing->isHalf = shown && isSqueezed(packing->arrangement, *shown);
}

void addStream(AVFormatContext &input, const InputFile &file, const AVStream &stream, VideoPackings &packings) {
    const auto found = streamPacking(input, stream);
    // Then the shape of the pixels is no sign of full eyes.
    const bool isSaid = found && found->aspectIsOfWholeEyes;
    std::vector<StereoPacking *> open;
    if (found)
        packings.stream = found->packing;
    if (packings.stream && !isSaid)
        open.push_back(&*packings.stream);
    if (packings.container && isSaid && packings.container->arrangement == found->packing.arrangement)
        packings.container->isHalf = true;
    else if (packings.container)
        open.push_back(&*packings.container);
    // Elsewhere the shape of a frame has no meaning, as players put it on a sphere.
    if (packings.projection.empty() || packings.projection == "rect")
        addShape(file, stream, open);
}

VideoPackings read(const InputFile &file) {
    std::optional<ffmpeg::Input> input(std::in_place, file, ffmpeg::Opening::headers);
    // The headers of raw streams are their first pictures.
    if (const AVStream *first = firstPictures(**input); !first || first->codecpar->width == 0)
        input.emplace(file);
    VideoPackings packings;
    const AVStream *stream = firstPictures(**input);
    if (!stream)
        return packings;
    packings.secondStream = streamLike(**input, *stream);
    packings.projection = projectionOf(*stream);
    if (isOf(**input, "matroska"))
        packings.container = matroskaPacking(*stream);
    if (isOf(**input, "mov")) {
        const StereoMovieFacts facts = readStereoMovieFacts(file);
        packings.container = moviePacking(facts);
        if (!facts.projection.empty())
            packings.projection = facts.projection;
    }
    addStream(**input, file, *stream, packings);
    return packings;
}

} // namespace

VideoPackings readVideoPackings(const InputFile &file) noexcept {
    try {
        return read(file);
    } catch (const std::exception &) {
        return {};
    }
}

} // namespace lumetwin::media
