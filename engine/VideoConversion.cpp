// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/VideoConversion.h"

#include "media/MediaError.h"

#include <algorithm>
#include <exception>
#include <thread>

#include <pthread.h>

namespace lumetwin {

namespace {

constexpr double fallbackRate = 30;
constexpr double bitsPerPixel = 0.15;
constexpr std::int64_t smallestBitRate = 1'000'000;
constexpr double largestBitRate = 9e18; // what a 64-bit integer holds

/// A thread of the given name (at most 15 characters are kept) that passes an exception on.
class NamedThread {
public:
    NamedThread(const char *name, std::function<void()> work)
        : thread_([this, name, work = std::move(work)] {
              pthread_setname_np(pthread_self(), name);
              try {
                  work();
              } catch (...) {
                  failure_ = std::current_exception();
              }
          }) {}
    NamedThread(const NamedThread &) = delete;
    NamedThread &operator=(const NamedThread &) = delete;
    ~NamedThread() {
        if (thread_.joinable())
            thread_.join();
    }

    /// Waits for the end; the exception that ended it, if any.
    std::exception_ptr wait() {
        thread_.join();
        return failure_;
    }

private:
    std::exception_ptr failure_;
    std::thread thread_;
};

} // namespace

media::PixelAspect outputPixelAspect(const ConversionSettings &settings, const VideoInfo &info) {
    return settings.enableResize ? media::PixelAspect{} : info.track.pixelAspect;
}

VideoTiming videoTiming(const VideoInfo &info) {
    VideoTiming timing;
    timing.rate = info.fps > 0 ? static_cast<double>(info.fps) : fallbackRate;
    timing.frameDuration = static_cast<std::int64_t>(videoTimeScale / timing.rate);
    // Rates above the time scale would not advance at all.
    timing.frameDuration = std::max<std::int64_t>(timing.frameDuration, 1);
    const double total = info.duration * static_cast<double>(info.fps);
    timing.totalFrames = info.fps > 0 && total > 0 && total < 9e18 ? static_cast<std::int64_t>(total) : 0;
    return timing;
}

std::int64_t averageBitRate(double first, double second, double quality) {
    const double rate = first * second * bitsPerPixel * quality;
    return rate > smallestBitRate ? static_cast<std::int64_t>(std::min(rate, largestBitRate)) : smallestBitRate;
}

void runVideoConversion(const ConversionControl &control, media::MovieWriter &writer, std::optional<AudioCopy> &audio,
                        const char *videoQueue, const char *audioQueue, const std::function<void()> &frameLoop) {
    NamedThread video(videoQueue, [&] {
        try {
            frameLoop();
        } catch (...) {
            writer.abandon();
            writer.finishVideo();
            throw;
        }
        if (control.cancelled())
            writer.abandon();
        writer.finishVideo();
    });
    if (audio)
        NamedThread(audioQueue, [&] { copyAudio(*audio, writer, control); }).wait();
    if (const std::exception_ptr failure = video.wait()) {
        writer.cancel();
        std::rethrow_exception(failure);
    }
    if (control.cancelled())
        writer.cancel();
    else
        writer.finish();
}

void checkWrittenFrames(const media::MovieFile &movie, const VideoInfo &info, const media::FrameReader &reader,
                        std::int64_t written, const ConversionControl &control) {
    if (control.cancelled())
        return;
    if (written == 0)
        throw media::MediaError(movie.path(), "Cannot decode", 0, "not one frame could be read");
    if (!reader.damaged() || !control.onWarning)
        return;
    const std::int64_t expected = info.track.frameCount > 0 ? info.track.frameCount : videoTiming(info).totalFrames;
    control.onWarning("the data is damaged or ends early: " + std::to_string(written) + " frames written, " +
                      std::to_string(expected) + " expected");
}

} // namespace lumetwin
