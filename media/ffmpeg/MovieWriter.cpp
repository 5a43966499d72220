// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/MovieWriter.h"

#include "media/BoundedQueue.h"
#include "media/LingeringThreads.h"
#include "media/ffmpeg/AudioEncoder.h"
#include "media/ffmpeg/FileIO.h"
#include "media/ffmpeg/MovieHeader.h"
#include "media/ffmpeg/StereoEntry.h"
#include "media/ffmpeg/TrackBalance.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <future>
#include <mutex>
#include <optional>
#include <thread>

#include <pthread.h>

namespace lumetwin::media {

namespace {

using ffmpeg::check;
using ffmpeg::TrackBalance;

constexpr MediaOperation operation = MediaOperation::write;
// Pictures that wait for the encoder.
constexpr std::size_t picturesAhead = 3;
// How often a writer that waits for its encoder looks whether it is cancelled.
constexpr std::chrono::milliseconds cancelInterval{20};
// How long a writer that is cancelled waits for its encoder to stop.
constexpr std::chrono::milliseconds patience{200};
// A file that is never finished can be read up to its last fragment; each holds this much.
constexpr const char *fragmentDuration = "2000000"; // microseconds
constexpr int largestSide = 16384;

/// How wide a row of pixels is shown, within what a header holds.
int shownWidth(int width, PixelAspect aspect) {
    return static_cast<int>(std::clamp<std::int64_t>(std::int64_t{width} * aspect.width / aspect.height, 1, 65535));
}

struct FreeMuxer {
    void operator()(AVFormatContext *context) const { avformat_free_context(context); }
};
using Muxer = std::unique_ptr<AVFormatContext, FreeMuxer>;

/// Ends the work on a file that is being cancelled.
struct Abandoned {};

struct TimedPicture {
    Picture left;
    std::optional<Picture> right;
    std::int64_t time;
    std::int64_t duration;
};

} // namespace

struct MovieWriter::State : std::enable_shared_from_this<MovieWriter::State> {
    OutputFile file;
    const std::filesystem::path output;
    std::optional<StereoVideoEncoding> stereo;
    Container container;
    MovieTags tags;
    ffmpeg::FileIO io;
    Muxer muxer;
    std::optional<ffmpeg::AudioEncoder> audio;
    AVStream *audioStream = nullptr;
    int audioRate = 0;
    std::function<std::unique_ptr<ffmpeg::VideoTrackEncoder>(int timeScale)> makeVideo;
    std::unique_ptr<ffmpeg::VideoTrackEncoder> video;
    AVStream *videoStream = nullptr;
    int shownWidth = 0; ///< of the video, with square pixels
    int shownHeight = 0;
    int timeScale = 600;
    TrackBalance balance;
    BoundedQueue<TimedPicture> pictures{picturesAhead};
    std::thread encoding;
    std::future<void> encoded; ///< the thread has come to its end
    std::mutex muxing;
    std::mutex failing;
    std::exception_ptr failure;
    std::atomic<bool> idle{false}; ///< failed or abandoned: appending does nothing

    State(const OutputFile &outputFile, Container kind, MovieTags movieTags)
        : file(outputFile), output(file.path()), container(kind), tags(std::move(movieTags)), io(file) {
        AVFormatContext *context = nullptr;
        check(avformat_alloc_output_context2(&context, nullptr, kind == Container::mpeg4 ? "mp4" : "mov", nullptr),
              output, operation);
        muxer.reset(context);
        muxer->pb = io.context();
    }

    /// The writer lets go: what is encoded still will not be written.
    void release() {
        abandon();
        leaveEncoding();
    }

    void abandon() {
        idle = true;
        balance.release();
        pictures.discard();
    }

    void fail(std::exception_ptr error) {
        {
            const std::lock_guard lock(failing);
            if (!failure)
                failure = std::move(error);
        }
        abandon();
    }

    void joinEncoding() {
        if (encoding.joinable())
            encoding.join();
    }

    /// Waits for the encoder's thread if it ends soon.
    void leaveEncoding() {
        if (!encoding.joinable())
            return;
        if (encoded.wait_for(patience) == std::future_status::ready)
            encoding.join();
        else
            lingering::leave(std::move(encoding));
    }

    template <typename Work> void guarded(const Work &work) {
        try {
            work();
        } catch (const Abandoned &) {
            return;
        } catch (...) {
            fail(std::current_exception());
        }
    }

    AVStream *addStream() {
        AVStream *stream = avformat_new_stream(muxer.get(), nullptr);
        if (!stream)
            throw std::bad_alloc();
        return stream;
    }

    void writePacket(AVPacket &packet, AVStream &stream, AVRational base) {
        const std::lock_guard lock(muxing);
        if (idle)
            throw Abandoned();
        packet.stream_index = stream.index;
        av_packet_rescale_ts(&packet, base, stream.time_base);
        check(av_interleaved_write_frame(muxer.get(), &packet), output, operation);
    }

    ffmpeg::PacketSink videoSink() {
        return [this](AVPacket &packet) { writePacket(packet, *videoStream, {1, timeScale}); };
    }

    ffmpeg::PacketSink audioSink() {
        return [this](AVPacket &packet) { writePacket(packet, *audioStream, {1, audioRate}); };
    }

    void encodePictures() {
        pthread_setname_np(pthread_self(), "encode");
        guarded([&] {
            const ffmpeg::PacketSink sink = videoSink();
            while (std::optional<TimedPicture> next = pictures.pop())
                video->encode(next->left, next->right ? &*next->right : nullptr, next->time, next->duration, sink);
            if (!idle)
                video->finish(sink);
        });
    }

    void start(int scale) {
        timeScale = scale;
        if (makeVideo) {
            video = makeVideo(scale);
            video->describe(*videoStream);
            videoStream->time_base = {1, scale};
        }
        writeHeader();
        if (video)
            startEncoding();
    }

    void startEncoding() {
        std::promise<void> end;
        encoded = end.get_future();
        encoding = std::thread([self = shared_from_this(), end = std::move(end)]() mutable {
            self->encodePictures();
            end.set_value();
        });
    }

    void writeHeader() {
        for (const auto &[key, value] : ffmpeg::muxerTags(tags))
            av_dict_set(&muxer->metadata, key.c_str(), value.c_str(), 0);
        AVDictionary *options = nullptr;
        // Written in fragments, and turned into an ordinary movie at the end. Edit lists place the first picture and
        // the first sound at 0; by itself the muxer writes none into fragments.
        av_dict_set(&options, "movflags", "+hybrid_fragmented", 0);
        av_dict_set(&options, "use_editlist", "1", 0);
        av_dict_set(&options, "frag_duration", fragmentDuration, 0);
        av_dict_set_int(&options, "video_track_timescale", timeScale, 0);
        av_dict_set_int(&options, "movie_timescale", timeScale, 0);
        const int code = avformat_write_header(muxer.get(), &options);
        av_dict_free(&options);
        check(code, output, operation);
    }

    void append(TimedPicture picture) {
        if (idle)
            return;
        const double time = static_cast<double>(picture.time) / timeScale;
        pictures.push(std::move(picture));
        balance.reach(TrackBalance::video, time);
    }

    void throwFailure() {
        const std::lock_guard lock(failing);
        if (failure)
            std::rethrow_exception(failure);
    }

    void completeStereoTrack(ffmpeg::MovieHeader &header) {
        if (!ffmpeg::completeStereoEntry(header, *stereo))
            throw MediaError(output, operation, 0, MediaReason::stereoTrackNotFound);
        ffmpeg::addApertures(header, shownWidth, shownHeight);
    }

    /// Waits for the last pictures to be coded, or for the wish to cancel.
    void drain(const std::function<bool()> &cancelled) {
        pictures.close();
        while (encoding.joinable() && !cancelled() && encoded.wait_for(cancelInterval) != std::future_status::ready)
            continue;
    }

    void cancel() {
        abandon();
        leaveEncoding();
        throwFailure();
    }

    bool finish(const std::function<bool()> &cancelled) {
        if (cancelled)
            drain(cancelled);
        if (cancelled && cancelled()) {
            cancel();
            return false;
        }
        complete();
        return true;
    }

    void complete() {
        pictures.close();
        joinEncoding();
        throwFailure();
        check(av_write_trailer(muxer.get()), output, operation);
        avio_flush(muxer->pb);
        check(muxer->pb->error, output, operation);
        ffmpeg::editMovieHeader(file, [&](ffmpeg::MovieHeader &header) {
            ffmpeg::completeEditLists(header);
            ffmpeg::removeFragmentDefaults(header);
            if (videoStream)
                ffmpeg::setPresentationSize(header, shownWidth, shownHeight);
            if (stereo)
                completeStereoTrack(header);
            ffmpeg::addMetadata(header, ffmpeg::metadataItems(tags));
        });
    }
};

void MovieWriter::requireSize(const std::filesystem::path &output, std::int64_t width, std::int64_t height) {
    if (width < 1 || height < 1 || width > largestSide || height > largestSide)
        throw MediaError(output, operation, AVERROR(EINVAL), MediaReason::beyondFormat,
                         std::to_string(width) + " × " + std::to_string(height));
}

MovieWriter::MovieWriter(const OutputFile &output, Container container, MovieTags tags)
    : state_(std::make_shared<State>(output, container, std::move(tags))) {}

MovieWriter::~MovieWriter() {
    state_->release();
}

void MovieWriter::addAudio(const AudioEncoding &encoding) {
    State &state = *state_;
    state.audio.emplace(state.output, encoding);
    state.audioRate = encoding.sampleRate;
    state.audioStream = state.addStream();
    state.audio->describe(*state.audioStream);
    state.audioStream->time_base = {1, encoding.sampleRate};
    state.balance.add(TrackBalance::audio);
}

void MovieWriter::addVideo(const VideoEncoding &encoding) {
    requireSize(state_->output, encoding.width, encoding.height);
    state_->shownWidth = shownWidth(encoding.width, encoding.pixelAspect);
    state_->shownHeight = encoding.height;
    state_->makeVideo = [file = state_->output, encoding](int timeScale) {
        return ffmpeg::makeVideoEncoder(file, encoding, timeScale);
    };
    state_->videoStream = state_->addStream();
    state_->balance.add(TrackBalance::video);
}

void MovieWriter::addVideo(const StereoVideoEncoding &encoding) {
    requireSize(state_->output, encoding.width, encoding.height);
    state_->stereo = encoding;
    state_->shownWidth = shownWidth(encoding.width, encoding.pixelAspect);
    state_->shownHeight = encoding.height;
    state_->makeVideo = [file = state_->output, encoding](int timeScale) {
        return ffmpeg::makeVideoEncoder(file, encoding, timeScale);
    };
    state_->videoStream = state_->addStream();
    state_->balance.add(TrackBalance::video);
}

void MovieWriter::start(int timeScale) {
    state_->start(timeScale);
}

void MovieWriter::append(const Picture &picture, std::int64_t time, std::int64_t duration) {
    state_->append({picture, std::nullopt, time, duration});
}

void MovieWriter::append(const Picture &left, const Picture &right, std::int64_t time, std::int64_t duration) {
    state_->append({left, right, time, duration});
}

void MovieWriter::append(const AudioBlock &block) {
    State &state = *state_;
    if (state.idle)
        return;
    state.guarded([&] { state.audio->encode(block, state.audioSink()); });
    state.balance.reach(TrackBalance::audio, static_cast<double>(state.audio->taken()) / state.audioRate);
}

void MovieWriter::finishVideo() {
    state_->pictures.close();
    state_->balance.end(TrackBalance::video);
}

void MovieWriter::finishAudio() {
    if (!state_->idle)
        state_->guarded([&] { state_->audio->finish(state_->audioSink()); });
    state_->balance.end(TrackBalance::audio);
}

bool MovieWriter::failed() const {
    const std::lock_guard lock(state_->failing);
    return state_->failure != nullptr;
}

void MovieWriter::abandon() {
    state_->abandon();
}

bool MovieWriter::finish(const std::function<bool()> &cancelled) {
    return state_->finish(cancelled);
}

void MovieWriter::cancel() {
    state_->cancel();
}

} // namespace lumetwin::media
