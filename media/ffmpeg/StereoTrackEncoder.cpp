// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/StereoTrackEncoder.h"

#include "media/Padding.h"
#include "media/ffmpeg/Aperture.h"
#include "media/ffmpeg/LightLevelData.h"
#include "media/ffmpeg/Pictures.h"
#include "media/x265/StereoEncoder.h"

extern "C" {
#include <libavutil/mem.h>
#include <libavutil/spherical.h>
#include <libavutil/stereo3d.h>
}

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

namespace lumetwin::media::ffmpeg {

namespace {

struct AvFree {
    void operator()(void *memory) const { av_free(memory); }
};

/// A value as a fraction that is never exactly zero. The muxer omits boxes for zero values, but readers of spatial
/// video expect them. A millionth becomes 0 in the box's unit.
AVRational fraction(int value, int unit) {
    return value == 0 ? AVRational{1, 1'000'000} : AVRational{value, unit};
}

template <typename Value>
void attach(AVCodecParameters &parameters, AVPacketSideDataType type, Value *value, std::size_t size) {
    if (!value ||
        !av_packet_side_data_add(&parameters.coded_side_data, &parameters.nb_coded_side_data, type, value, size, 0)) {
        av_free(value);
        throw std::bad_alloc();
    }
}

void attachStereoFacts(AVCodecParameters &parameters, const StereoVideoEncoding &encoding) {
    std::size_t size = 0;
    AVStereo3D *stereo = av_stereo3d_alloc_size(&size);
    if (stereo) {
        stereo->type = AV_STEREO3D_UNSPEC;
        stereo->view = AV_STEREO3D_VIEW_PACKED;
        stereo->primary_eye = AV_PRIMARY_EYE_LEFT;
        stereo->baseline = encoding.baseline;
        stereo->horizontal_disparity_adjustment = fraction(encoding.disparityAdjustment, 10'000);
        stereo->horizontal_field_of_view = fraction(static_cast<int>(encoding.horizontalFieldOfView), 1'000);
    }
    attach(parameters, AV_PKT_DATA_STEREO3D, stereo, size);
    if (!encoding.rectilinear)
        return;
    AVSphericalMapping *mapping = av_spherical_alloc(&size);
    if (mapping)
        mapping->projection = AV_SPHERICAL_RECTILINEAR;
    attach(parameters, AV_PKT_DATA_SPHERICAL, mapping, size);
}

class StereoTrackEncoder : public VideoTrackEncoder {
public:
    StereoTrackEncoder(const std::filesystem::path &file, const StereoVideoEncoding &encoding, int timeScale)
        : file_(file), encoding_(encoding), width_(codedSize(encoding.width, 2)),
          height_(codedSize(encoding.height, 2)),
          duration_(std::max<std::int64_t>(1, std::llround(timeScale / encoding.frameRate))),
          encoder_(file, {width_, height_, encoding.averageBitRate, timeScale, duration_, encoding.colour,
                          x265::shippedPreset, encoding.depth, encoding.levels}),
          format_{ColourModel::yuv, encoding.depth, 1, 1}, pool_(width_, height_, format_, encoding.colour) {}

    void describe(AVStream &stream) override {
        AVCodecParameters &parameters = *stream.codecpar;
        parameters.codec_type = AVMEDIA_TYPE_VIDEO;
        parameters.codec_id = AV_CODEC_ID_HEVC;
        parameters.codec_tag = MKTAG('h', 'v', 'c', '1');
        parameters.format = pixelFormat(format_);
        parameters.width = width_;
        parameters.height = height_;
        parameters.field_order = AV_FIELD_PROGRESSIVE;
        parameters.video_delay = encoder_.reordering();
        setColour(parameters, encoding_.colour);
        setExtradata(parameters, encoder_.parameterSets());
        setLightLevels(parameters, encoding_.levels);
        attachStereoFacts(parameters, encoding_);
        setAperture(stream, encoding_.width, encoding_.height);
        setPixelAspect(stream, encoding_.pixelAspect);
        stream.disposition |= AV_DISPOSITION_MULTILAYER;
        stream.avg_frame_rate = av_d2q(encoding_.frameRate, 1001 * 1000);
    }

    void encode(const Picture &left, const Picture *right, std::int64_t time, std::int64_t duration,
                const PacketSink &sink) override {
        encoder_.encode(padded(left, width_, height_, pool_), padded(right ? *right : left, width_, height_, pool_),
                        time, packets(sink), duration);
    }

    void finish(const PacketSink &sink) override { encoder_.finish(packets(sink)); }

private:
    x265::AccessUnitSink packets(const PacketSink &sink) {
        return [this, &sink](const x265::AccessUnit &unit) {
            check(av_new_packet(packet_.get(), static_cast<int>(unit.bytes.size())), file_, MediaOperation::encode);
            std::memcpy(packet_->data, unit.bytes.data(), unit.bytes.size());
            packet_->pts = unit.time;
            packet_->dts = unit.decodingTime;
            packet_->duration = unit.duration;
            if (unit.keyFrame)
                packet_->flags |= AV_PKT_FLAG_KEY;
            sink(*packet_);
            av_packet_unref(packet_.get());
        };
    }

    std::filesystem::path file_;
    StereoVideoEncoding encoding_;
    int width_;
    int height_;
    std::int64_t duration_;
    x265::StereoEncoder encoder_;
    PictureFormat format_;
    PicturePool pool_;
    Packet packet_ = makePacket();
};

} // namespace

std::unique_ptr<VideoTrackEncoder> makeVideoEncoder(const std::filesystem::path &file,
                                                    const StereoVideoEncoding &encoding, int timeScale) {
    return std::make_unique<StereoTrackEncoder>(file, encoding, timeScale);
}

} // namespace lumetwin::media::ffmpeg
