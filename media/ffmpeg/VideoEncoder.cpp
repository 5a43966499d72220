// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/VideoEncoder.h"

#include "media/DecodingTimes.h"
#include "media/Padding.h"
#include "media/Processors.h"
#include "media/ffmpeg/Aperture.h"
#include "media/ffmpeg/LightLevelData.h"
#include "media/ffmpeg/PackingMarks.h"
#include "media/ffmpeg/Pictures.h"
#include "media/hevc/LightLevelUnits.h"
#include "media/hevc/NalUnits.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <cmath>
#include <new>
#include <optional>

namespace lumetwin::media::ffmpeg {

namespace {

// The best presets that need at most half the time of "medium"; bench/sbs_video.py prints the table. A second reference
// picture restores half of the quality that "superfast" loses, for a tenth of its time.
constexpr const char *h264Preset = "veryfast";
constexpr const char *hevcPreset = "superfast";
constexpr const char *hevcOptions = "ref=2:log-level=none";

/// The number of frames that x265 encodes in parallel: 0 lets x265 choose, but 2 where it would choose one frame,
/// because processors would be idle at the end of each frame.
int hevcFramesAtOnce() {
    return processors() < 4 ? 2 : 0;
}

// x265 needs at least one coding tree unit of the smallest useful size; x264 has no such limit.
constexpr int smallestHevcSide = 32;

class LibraryEncoder : public VideoTrackEncoder {
public:
    LibraryEncoder(const std::filesystem::path &file, const VideoEncoding &encoding, int timeScale)
        : file_(file), encoding_(encoding), width_(codedSize(encoding.width, smallestSide())),
          height_(codedSize(encoding.height, smallestSide())), format_{ColourModel::yuv, encoding.depth, 1, 1},
          pool_(width_, height_, format_, encoding.colour) {
        const bool hevc = encoding.codec == VideoCodec::hevc;
        const AVCodec *library = avcodec_find_encoder_by_name(hevc ? "libx265" : "libx264");
        codec_.reset(avcodec_alloc_context3(library));
        if (!codec_)
            throw std::bad_alloc();
        codec_->width = width_;
        codec_->height = height_;
        codec_->pix_fmt = pixelFormat(format_);
        codec_->time_base = {1, timeScale};
        codec_->framerate = av_d2q(encoding.frameRate, 1001 * 1000);
        codec_->bit_rate = encoding.averageBitRate;
        codec_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        codec_->thread_count = hevc ? hevcFramesAtOnce() : 0;
        setColour(*codec_, encoding.colour);
        if (encoding.pixelAspect != PixelAspect{})
            codec_->sample_aspect_ratio = {encoding.pixelAspect.width, encoding.pixelAspect.height};
        av_opt_set(codec_->priv_data, "preset", hevc ? hevcPreset : h264Preset, 0);
        if (hevc)
            av_opt_set(codec_->priv_data, "x265-params", hevcOptions, 0);
        check(avcodec_open2(codec_.get(), library, nullptr), file_, MediaOperation::encode);
    }

    void describe(AVStream &stream) override {
        check(avcodec_parameters_from_context(stream.codecpar, codec_.get()), file_, MediaOperation::encode);
        if (encoding_.codec == VideoCodec::hevc)
            stream.codecpar->codec_tag = MKTAG('h', 'v', 'c', '1');
        if (encoding_.codec == VideoCodec::hevc)
            announceLightLevels(*stream.codecpar);
        stream.avg_frame_rate = codec_->framerate;
        setAperture(stream, encoding_.width, encoding_.height);
        setPixelAspect(stream, encoding_.pixelAspect);
    }

    void encode(const Picture &picture, const Picture *, std::int64_t time, std::int64_t duration,
                const PacketSink &sink) override {
        FramePointer frame = frameOf(padded(picture, width_, height_, pool_));
        frame->pts = time;
        frame->duration = duration;
        decodingTimes().add(time, duration);
        check(avcodec_send_frame(codec_.get(), frame.get()), file_, MediaOperation::encode);
        receive(sink);
    }

    void finish(const PacketSink &sink) override {
        check(avcodec_send_frame(codec_.get(), nullptr), file_, MediaOperation::encode);
        receive(sink);
    }

private:
    int smallestSide() const { return encoding_.codec == VideoCodec::hevc ? smallestHevcSide : 2; }

    hevc::Coding coding() const { return encoding_.codec == VideoCodec::hevc ? hevc::Coding::hevc : hevc::Coding::avc; }

    /// The reordering delay in pictures. x265 does not report it; with one level of B-frames used as references it is
    /// two.
    int reordering() const { return encoding_.codec == VideoCodec::hevc ? 2 : codec_->has_b_frames; }

    /// In the sample entry, for decoders and for who reads no stream.
    void announceLightLevels(AVCodecParameters &parameters) const {
        std::vector<std::uint8_t> sets(parameters.extradata, parameters.extradata + parameters.extradata_size);
        for (const std::vector<std::uint8_t> &unit : hevc::lightLevelUnits(encoding_.levels))
            hevc::appendAnnexB(sets, unit);
        setExtradata(parameters, sets);
        setLightLevels(parameters, encoding_.levels);
    }

    DecodingTimes &decodingTimes() {
        if (!decodingTimes_)
            decodingTimes_.emplace(reordering());
        return *decodingTimes_;
    }

    void receive(const PacketSink &sink) {
        for (;;) {
            const int code = avcodec_receive_packet(codec_.get(), packet_.get());
            if (code == AVERROR(EAGAIN) || code == AVERROR_EOF)
                return;
            check(code, file_, MediaOperation::encode);
            // (x265's own are undefined for clips shorter than its reordering.)
            const DecodingTimes::Moment decoded = decodingTimes().next();
            packet_->dts = decoded.time;
            packet_->duration = decoded.duration;
            if (encoding_.packing && packet_->flags & AV_PKT_FLAG_KEY)
                markPacket(*packet_, *encoding_.packing, coding());
            sink(*packet_);
            av_packet_unref(packet_.get());
        }
    }

    std::filesystem::path file_;
    VideoEncoding encoding_;
    int width_;
    int height_;
    PictureFormat format_;
    PicturePool pool_;
    Codec codec_;
    Packet packet_ = makePacket();
    std::optional<DecodingTimes> decodingTimes_;
};

} // namespace

std::unique_ptr<VideoTrackEncoder> makeVideoEncoder(const std::filesystem::path &file, const VideoEncoding &encoding,
                                                    int timeScale) {
    return std::make_unique<LibraryEncoder>(file, encoding, timeScale);
}

} // namespace lumetwin::media::ffmpeg
