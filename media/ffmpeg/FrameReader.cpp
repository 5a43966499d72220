// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/FrameReader.h"
#include "media/BoundedQueue.h"
#include "media/StereoMovieFacts.h"
#include "media/ffmpeg/AccessUnitGuard.h"
#include "media/ffmpeg/MovieFileState.h"
#include "media/ffmpeg/Pictures.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/stereo3d.h>
}

#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>
#include <utility>

#include <pthread.h>

namespace lumetwin::media {

namespace {

// Enough to let decoding, composing and encoding run beside each other.
constexpr std::size_t framesAhead = 3;
// 8192 × 8192 and then some: a header that asks for more is a lie or not for us.
constexpr std::int64_t largestFrame = std::int64_t{1} << 27;

/// Each thread more costs a little of what all of them do, and most processors are busy coding the frames again.
int decodingThreads() {
    return static_cast<int>(std::max(1U, std::thread::hardware_concurrency() / 2));
}

using ffmpeg::check;

StereoView viewOf(const AVFrame &frame) {
    const AVFrameSideData *data = av_frame_get_side_data(&frame, AV_FRAME_DATA_STEREO3D);
    if (!data)
        return StereoView::none;
    switch (reinterpret_cast<const AVStereo3D *>(data->data)->view) {
    case AV_STEREO3D_VIEW_LEFT:
        return StereoView::left;
    case AV_STEREO3D_VIEW_RIGHT:
        return StereoView::right;
    default:
        return StereoView::none;
    }
}

int viewId(const AVFrame &frame) {
    const AVFrameSideData *data = av_frame_get_side_data(&frame, AV_FRAME_DATA_VIEW_ID);
    return data ? *reinterpret_cast<const int *>(data->data) : 0;
}

/// The views of a stream without a reference displays message: by convention the first is the left one.
StereoView viewOrConvention(const AVFrame &frame, bool bothViews) {
    const StereoView view = viewOf(frame);
    if (view != StereoView::none || !bothViews || !av_frame_get_side_data(&frame, AV_FRAME_DATA_VIEW_ID))
        return view;
    return viewId(frame) == 0 ? StereoView::left : StereoView::right;
}

} // namespace

struct FrameReader::State {
    std::filesystem::path file;
    AVFormatContext *input;
    int stream;
    bool bothViews;
    ffmpeg::Cropping cropping;
    ffmpeg::Codec decoder;
    ffmpeg::Packet packet = ffmpeg::makePacket();
    std::optional<ffmpeg::AccessUnitGuard> guard; ///< where two views are decoded
    ffmpeg::PictureImporter importer;
    bool packetWaits = false;
    std::int64_t packetsRead = 0;
    std::optional<Frame> pending;
    std::int64_t pendingTime = AV_NOPTS_VALUE;
    int pendingView = 0;
    std::atomic<bool> damaged{false};
    std::exception_ptr failure;
    BoundedQueue<Frame> frames{framesAhead};
    std::thread thread;

    State(MovieFile &movie, AVFormatContext *demuxer, const VideoTrack &track, Views views)
        : file(movie.path()), input(demuxer), stream(track.index), bothViews(views == Views::all),
          cropping(ffmpeg::cropping(*demuxer->streams[track.index]->codecpar)),
          decoder(ffmpeg::makeDecoder(file, *demuxer->streams[track.index])) {
        // Packets of a sample entry that is protected may never be handed out.
        if (readStereoMovieFacts(movie.file()).encrypted)
            throw encrypted();
        openDecoder();
        packetWaits = readPacket();
    }

    MediaError encrypted() const {
        return MediaError(file, MediaOperation::decode, AVERROR(EACCES), MediaReason::encryptedMovie);
    }

    void openDecoder() {
        for (unsigned index = 0; index < input->nb_streams; ++index)
            if (static_cast<int>(index) != stream)
                input->streams[index]->discard = AVDISCARD_ALL;
        decoder->thread_count = decodingThreads();
        decoder->max_pixels = largestFrame;
        if (bothViews && decoder->codec_id == AV_CODEC_ID_HEVC)
            askForBothViews();
        check(avcodec_open2(decoder.get(), decoder->codec, nullptr), file, MediaOperation::decode);
    }

    void askForBothViews() {
        check(av_opt_set(decoder->priv_data, "view_ids", "-1", 0), file, MediaOperation::decode);
        guard.emplace(std::span(decoder->extradata, static_cast<std::size_t>(decoder->extradata_size)));
        requireConsistency();
    }

    void requireConsistency() const {
        if (!guard->consistent())
            throw MediaError(file, MediaOperation::decode, AVERROR_INVALIDDATA, MediaReason::contradictoryParameters);
    }

    /// The next packet of the track; false at the end, also where the file ends early. Throws where it is encrypted.
    bool readPacket() {
        for (;;) {
            av_packet_unref(packet.get());
            const int code = av_read_frame(input, packet.get());
            if (code < 0) {
                // An index that lists more than there was tells of a file that ends early.
                if (code != AVERROR_EOF || packetsRead < avformat_index_get_entries_count(input->streams[stream]))
                    damaged = true;
                return false;
            }
            if (packet->stream_index != stream)
                continue;
            if (packet->flags & AV_PKT_FLAG_CORRUPT)
                damaged = true;
            ++packetsRead;
            // Whatever is in the clear at the beginning, a film without its rest serves nobody.
            if (ffmpeg::isEncrypted(*packet))
                throw encrypted();
            if (!guard || guardPacket())
                return true;
        }
    }

    /// Leaves in the packet what the decoder of two views survives; false when that is nothing.
    bool guardPacket() {
        std::size_t newSize = 0;
        if (const auto *changed = av_packet_get_side_data(packet.get(), AV_PKT_DATA_NEW_EXTRADATA, &newSize)) {
            guard->configure({changed, newSize});
            requireConsistency();
        }
        check(av_packet_make_writable(packet.get()), file, MediaOperation::decode);
        const auto size = static_cast<std::size_t>(packet->size);
        const std::size_t kept = guard->keep({packet->data, size});
        if (guard->damaged())
            damaged = true;
        if (kept < size)
            av_shrink_packet(packet.get(), static_cast<int>(kept));
        return kept > 0;
    }

    /// Decodes until the queue is closed or the track ends.
    void run() {
        pthread_setname_np(pthread_self(), "decode");
        try {
            bool open = true;
            while (open && (packetWaits || readPacket())) {
                packetWaits = false;
                open = decode(packet.get());
            }
            if (open && decode(nullptr) && pending)
                frames.push(std::move(*pending));
        } catch (...) {
            failure = std::current_exception();
        }
        frames.close();
    }

    /// Sends a packet (none: drains) and takes what comes out. False once nobody wants more.
    bool decode(const AVPacket *sent) {
        for (;;) {
            const int code = avcodec_send_packet(decoder.get(), sent);
            if (!receive())
                return false;
            if (code == AVERROR(EAGAIN))
                continue;
            if (code == AVERROR(ENOMEM))
                throw ffmpeg::error(file, MediaOperation::decode, code);
            if (code < 0 && code != AVERROR_EOF)
                damaged = true; // this packet's frames are lost, the next ones may be whole
            return true;
        }
    }

    bool receive() {
        for (;;) {
            ffmpeg::FramePointer frame = ffmpeg::makeFrame();
            const int code = avcodec_receive_frame(decoder.get(), frame.get());
            if (code == AVERROR(EAGAIN) || code == AVERROR_EOF)
                return true;
            if (code == AVERROR(ENOMEM))
                throw ffmpeg::error(file, MediaOperation::decode, code);
            if (code < 0) {
                damaged = true;
                return true;
            }
            if ((frame->flags & AV_FRAME_FLAG_CORRUPT) || frame->decode_error_flags)
                damaged = true;
            if (!take(std::move(frame)))
                return false;
        }
    }

    /// Joins the second view to the first of the same time; hands on what is complete.
    bool take(ffmpeg::FramePointer decoded) {
        const std::int64_t time = decoded->pts;
        const std::int64_t duration = decoded->duration;
        const std::int64_t shown = time != AV_NOPTS_VALUE ? time : decoded->best_effort_timestamp;
        const int view = viewId(*decoded);
        TaggedPicture tagged;
        tagged.view = viewOrConvention(*decoded, bothViews);
        tagged.picture = cropToAperture(importer.import(std::move(decoded)));
        if (pending && pending->count == 1 && pendingTime == time && pendingView != view) {
            pending->pictures[1] = std::move(tagged);
            pending->count = 2;
            return true;
        }
        const bool wanted = !pending || frames.push(std::move(*pending));
        pending.emplace();
        pending->pictures[0] = std::move(tagged);
        pending->count = 1;
        if (shown != AV_NOPTS_VALUE)
            pending->time = shown;
        pending->duration = duration;
        pendingTime = time;
        pendingView = view;
        return wanted;
    }

    Picture cropToAperture(Picture picture) const {
        const int left = cropping.left >> picture.format.chromaShiftX << picture.format.chromaShiftX;
        const int top = cropping.top >> picture.format.chromaShiftY << picture.format.chromaShiftY;
        const int width = picture.width - cropping.left - cropping.right;
        const int height = picture.height - cropping.top - cropping.bottom;
        if (width < 1 || height < 1 || (width == picture.width && height == picture.height))
            return picture;
        return cropped(picture, left, top, width, height);
    }
};

FrameReader::FrameReader(MovieFile &movie, const VideoTrack &track, Views views)
    : state_(std::make_unique<State>(movie, movie.state_->input.get(), track, views)) {
    state_->thread = std::thread([state = state_.get()] { state->run(); });
}

FrameReader::~FrameReader() {
    state_->frames.discard();
    state_->thread.join();
}

std::optional<Frame> FrameReader::next() {
    std::optional<Frame> frame = state_->frames.pop();
    if (!frame && state_->failure)
        std::rethrow_exception(std::exchange(state_->failure, nullptr));
    return frame;
}

bool FrameReader::damaged() const {
    return state_->damaged;
}

} // namespace lumetwin::media
