// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/MovieWriter.h"

#include "media/ffmpeg/AudioEncoder.h"
#include "media/ffmpeg/EncodingThread.h"
#include "media/ffmpeg/MovieCompletion.h"
#include "media/ffmpeg/MovieMuxer.h"
#include "media/ffmpeg/StereoTrackEncoder.h"
#include "media/ffmpeg/TrackBalance.h"
#include "media/ffmpeg/VideoEncoder.h"

#include <atomic>
#include <exception>
#include <mutex>
#include <optional>
#include <string>

namespace lumetwin::media {

namespace {

using ffmpeg::TimedPicture;
using ffmpeg::TrackBalance;

constexpr int largestSide = 16384;

/// Thrown to end the work on a file that is cancelled.
struct Abandoned {};

/// The first failure of several threads.
class FirstFailure {
public:
    void keep(std::exception_ptr failure) {
        const std::lock_guard lock(mutex_);
        if (!failure_)
            failure_ = std::move(failure);
    }

    bool happened() const {
        const std::lock_guard lock(mutex_);
        return failure_ != nullptr;
    }

    void rethrow() const {
        const std::lock_guard lock(mutex_);
        if (failure_)
            std::rethrow_exception(failure_);
    }

private:
    mutable std::mutex mutex_;
    std::exception_ptr failure_;
};

struct SoundTrack {
    ffmpeg::AudioEncoder encoder;
    AVStream &stream;
    int rate;
};

struct PictureTrack {
    std::function<std::unique_ptr<ffmpeg::VideoTrackEncoder>(int timeScale)> makeEncoder;
    AVStream &stream;
    std::unique_ptr<ffmpeg::VideoTrackEncoder> encoder;
};

} // namespace

struct MovieWriter::State : std::enable_shared_from_this<MovieWriter::State> {
    OutputFile file;
    ffmpeg::MovieMuxer muxer;
    ffmpeg::MovieCompletion completion;
    std::optional<SoundTrack> sound;
    std::optional<PictureTrack> video;
    int timeScale = 600;
    TrackBalance balance;
    ffmpeg::EncodingThread encoding;
    FirstFailure failure;
    std::atomic<bool> idle{false}; ///< failed or abandoned: append() does nothing

    State(const OutputFile &output, Container container, MovieTags tags)
        : file(output), muxer(output, container), completion(std::move(tags)) {}

    void abandon() {
        idle = true;
        balance.release();
        encoding.discard();
    }

    template <typename Work> void guarded(const Work &work) {
        try {
            work();
        } catch (const Abandoned &) {
            return;
        } catch (...) {
            failure.keep(std::current_exception());
            abandon();
        }
    }

    ffmpeg::PacketSink sink(AVStream &stream, int unitsPerSecond) {
        return [this, &stream, unitsPerSecond](AVPacket &packet) {
            if (idle)
                throw Abandoned();
            muxer.write(packet, stream, {1, unitsPerSecond});
        };
    }

    template <typename Encoding> void addVideo(const Encoding &wanted) {
        requireSize(file.path(), wanted.width, wanted.height);
        completion.showPictures(wanted.width, wanted.height, wanted.pixelAspect);
        const auto make = [path = file.path(), wanted](int scale) {
            return ffmpeg::makeVideoEncoder(path, wanted, scale);
        };
        video.emplace(PictureTrack{make, muxer.addStream(), nullptr});
        balance.add(TrackBalance::video);
    }

    void start(int scale) {
        timeScale = scale;
        if (video) {
            video->encoder = video->makeEncoder(scale);
            video->encoder->describe(video->stream);
            muxer.announce(video->stream, completion.packing());
            video->stream.time_base = {1, scale};
        }
        muxer.writeHeader(completion.tags(), scale);
        if (video)
            encoding.start([self = shared_from_this()] { self->encodePictures(); });
    }

    void encodePictures() {
        guarded([&] {
            const ffmpeg::PacketSink packets = sink(video->stream, timeScale);
            while (std::optional<TimedPicture> next = encoding.take())
                video->encoder->encode(next->left, next->right ? &*next->right : nullptr, next->time, next->duration,
                                       packets);
            if (!idle)
                video->encoder->finish(packets);
        });
    }

    void append(TimedPicture picture) {
        if (idle)
            return;
        const double time = static_cast<double>(picture.time) / timeScale;
        encoding.give(std::move(picture));
        balance.reach(TrackBalance::video, time);
    }

    void append(const AudioBlock &block) {
        if (idle)
            return;
        guarded([&] { sound->encoder.encode(block, sink(sound->stream, sound->rate)); });
        balance.reach(TrackBalance::audio, static_cast<double>(sound->encoder.taken()) / sound->rate);
    }

    void finishSound() {
        if (!idle)
            guarded([&] { sound->encoder.finish(sink(sound->stream, sound->rate)); });
        balance.end(TrackBalance::audio);
    }

    void cancel() {
        abandon();
        encoding.leave();
        failure.rethrow();
    }

    bool finish(const std::function<bool()> &cancelled) {
        encoding.close();
        if (cancelled) {
            encoding.drain(cancelled);
            if (cancelled()) {
                cancel();
                return false;
            }
        }
        encoding.join();
        failure.rethrow();
        muxer.finish();
        if (!muxer.isMatroska())
            completion.apply(file);
        return true;
    }
};

void MovieWriter::requireSize(const std::filesystem::path &output, std::int64_t width, std::int64_t height) {
    if (width < 1 || height < 1 || width > largestSide || height > largestSide)
        throw MediaError(output, MediaOperation::write, AVERROR(EINVAL), MediaReason::beyondFormat,
                         std::to_string(width) + " × " + std::to_string(height));
}

MovieWriter::MovieWriter(const OutputFile &output, Container container, MovieTags tags)
    : state_(std::make_shared<State>(output, container, std::move(tags))) {}

/// What is encoded still will not be written.
MovieWriter::~MovieWriter() {
    state_->abandon();
    state_->encoding.leave();
}

void MovieWriter::addAudio(const AudioEncoding &encoding) {
    ffmpeg::AudioEncoder encoder(state_->file.path(), encoding);
    AVStream &stream = state_->muxer.addStream();
    encoder.describe(stream);
    stream.time_base = {1, encoding.sampleRate};
    state_->sound.emplace(SoundTrack{std::move(encoder), stream, encoding.sampleRate});
    state_->balance.add(TrackBalance::audio);
}

void MovieWriter::addVideo(const VideoEncoding &encoding) {
    state_->addVideo(encoding);
    state_->completion.describePacking(encoding.packing);
}

void MovieWriter::addVideo(const StereoVideoEncoding &encoding) {
    state_->addVideo(encoding);
    state_->completion.describeStereo(encoding);
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
    state_->append(block);
}

void MovieWriter::finishVideo() {
    state_->encoding.close();
    state_->balance.end(TrackBalance::video);
}

void MovieWriter::finishAudio() {
    state_->finishSound();
}

bool MovieWriter::failed() const {
    return state_->failure.happened();
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
