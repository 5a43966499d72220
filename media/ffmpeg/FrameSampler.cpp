// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/FrameSampler.h"

#include "media/StereoMovieFacts.h"
#include "media/ffmpeg/FrameScan.h"
#include "media/ffmpeg/Input.h"
#include "media/ffmpeg/MovieFileState.h"
#include "media/ffmpeg/Pictures.h"
#include "media/ffmpeg/VideoDecoder.h"

#include <algorithm>
#include <optional>

namespace lumetwin::media {

namespace {

constexpr int packetsToKeyFrame = 2000; ///< read after a position before a random access picture is found
constexpr int keyFramesToTry = 3;       ///< random access pictures that are tried when one cannot be decoded

/// The wanted video track, not counting cover pictures; the others are not demuxed. Throws MediaError.
AVStream &onlyVideoStream(const InputFile &file, AVFormatContext &input, VideoStream wanted) {
    AVStream *found = nullptr;
    int before = wanted == VideoStream::second ? 1 : 0;
    for (unsigned index = 0; index < input.nb_streams; ++index) {
        AVStream *stream = input.streams[index];
        const bool isVideo =
            stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !(stream->disposition & AV_DISPOSITION_ATTACHED_PIC);
        if (isVideo && !found && before-- == 0)
            found = stream;
        else
            stream->discard = AVDISCARD_ALL;
    }
    if (!found)
        throw MediaError(file.path(), MediaOperation::decode, AVERROR_STREAM_NOT_FOUND, MediaReason::noFrame);
    return *found;
}

class Sampler {
public:
    Sampler(const InputFile &file, VideoStream video)
        : file_(file), input_(file), stream_(onlyVideoStream(file, *input_, video)),
          codec_(ffmpeg::makeDecoder(file.path(), stream_)) {
        if (readStereoMovieFacts(file).encrypted)
            throw MediaError(file.path(), MediaOperation::decode, AVERROR(EACCES), MediaReason::encryptedMovie);
        codec_->max_pixels = ffmpeg::largestFrame;
        codec_->thread_count = 1;
        codec_->flags |= AV_CODEC_FLAG_OUTPUT_CORRUPT;
        codec_->skip_loop_filter = AVDISCARD_ALL;
        ffmpeg::check(avcodec_open2(codec_.get(), codec_->codec, nullptr), file.path(), MediaOperation::decode);
    }

    /// The picture at a position; nothing when there is none, or it is the one that was returned last.
    SampledFrame frameAt(double position) { return seek(position) ? nextFrame() : SampledFrame{}; }

    /// Whether a position may be behind the only random access picture.
    bool maySeekTooFar() const { return ffmpeg::seeksToAnyPicture(*input_); }

    SampledFrame firstFrame() {
        avcodec_flush_buffers(codec_.get());
        return av_seek_frame(input_.get(), stream_.index, 0, AVSEEK_FLAG_BYTE) >= 0 ? nextFrame() : SampledFrame{};
    }

private:
    SampledFrame nextFrame() {
        for (int attempt = 0; attempt < keyFramesToTry && nextKeyPacket(); ++attempt) {
            if (packet_->pos == lastPosition_ && packet_->pts == lastTime_)
                return {};
            if (ffmpeg::FramePointer frame = decoded()) {
                lastPosition_ = packet_->pos;
                lastTime_ = packet_->pts;
                return {withoutBorder(importer_.import(std::move(frame))), secondsOf(*packet_)};
            }
        }
        return {};
    }

    double secondsOf(const AVPacket &packet) const {
        return packet.pts == AV_NOPTS_VALUE ? 0 : static_cast<double>(packet.pts) * av_q2d(stream_.time_base);
    }

    bool seek(double position) {
        avcodec_flush_buffers(codec_.get());
        const bool byBytes = ffmpeg::isWithoutTimes(*input_) || input_->duration <= 0;
        if (!byBytes) {
            const std::int64_t start = input_->start_time == AV_NOPTS_VALUE ? 0 : input_->start_time;
            const auto time = start + static_cast<std::int64_t>(position * static_cast<double>(input_->duration));
            const std::int64_t target = av_rescale_q(time, AV_TIME_BASE_Q, stream_.time_base);
            if (av_seek_frame(input_.get(), stream_.index, target, AVSEEK_FLAG_BACKWARD) >= 0)
                return true;
        }
        const auto byte = static_cast<std::int64_t>(position * static_cast<double>(file_.size()));
        return av_seek_frame(input_.get(), stream_.index, byte, AVSEEK_FLAG_BYTE) >= 0;
    }

    bool nextKeyPacket() {
        for (int count = 0; count < packetsToKeyFrame; ++count) {
            av_packet_unref(packet_.get());
            if (av_read_frame(input_.get(), packet_.get()) < 0)
                return false;
            if (packet_->stream_index != stream_.index || !(packet_->flags & AV_PKT_FLAG_KEY))
                continue;
            if (ffmpeg::isEncrypted(*packet_))
                throw MediaError(file_.path(), MediaOperation::decode, AVERROR(EACCES), MediaReason::encryptedMovie);
            return true;
        }
        return false;
    }

    /// The first frame that the packet alone gives.
    ffmpeg::FramePointer decoded() {
        ffmpeg::FramePointer frame = ffmpeg::makeFrame();
        const bool sent =
            avcodec_send_packet(codec_.get(), packet_.get()) >= 0 && avcodec_send_packet(codec_.get(), nullptr) >= 0;
        const bool received = sent && avcodec_receive_frame(codec_.get(), frame.get()) >= 0;
        avcodec_flush_buffers(codec_.get());
        return received ? std::move(frame) : nullptr;
    }

    Picture withoutBorder(Picture picture) const {
        const ffmpeg::Cropping border = ffmpeg::cropping(*stream_.codecpar);
        const int left = border.left >> picture.format.chromaShiftX << picture.format.chromaShiftX;
        const int top = border.top >> picture.format.chromaShiftY << picture.format.chromaShiftY;
        const int width = picture.width - border.left - border.right;
        const int height = picture.height - border.top - border.bottom;
        return width < 1 || height < 1 ? picture : cropped(picture, left, top, width, height);
    }

    const InputFile &file_;
    ffmpeg::Input input_;
    AVStream &stream_;
    ffmpeg::Codec codec_;
    ffmpeg::Packet packet_ = ffmpeg::makePacket();
    ffmpeg::PictureImporter importer_;
    std::int64_t lastPosition_ = -2; ///< in the file, of the packet that was decoded last
    std::int64_t lastTime_ = AV_NOPTS_VALUE;
};

} // namespace

void sampleFrames(const InputFile &file, std::span<const double> positions,
                  const std::function<bool(SampledFrame frame)> &take, VideoStream video) {
    Sampler sampler(file, video);
    bool isAnyTaken = false;
    for (const double position : positions) {
        SampledFrame frame = sampler.frameAt(position);
        isAnyTaken |= static_cast<bool>(frame.picture);
        if (frame.picture && !take(std::move(frame)))
            return;
    }
    if (isAnyTaken || !sampler.maySeekTooFar())
        return;
    if (SampledFrame frame = sampler.firstFrame(); frame.picture)
        take(std::move(frame));
}

} // namespace lumetwin::media
