// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/EncodingThread.h"

#include "media/LingeringThreads.h"

#include <chrono>
#include <utility>

namespace lumetwin::media::ffmpeg {

namespace {

// How often who waits for the encoder looks whether it is cancelled.
constexpr std::chrono::milliseconds cancelInterval{20};
// How long a writer that is cancelled waits for its encoder to stop.
constexpr std::chrono::milliseconds patience{200};

} // namespace

void EncodingThread::start(std::function<void()> work) {
    thread_ = NamedThread("encode", std::move(work));
}

void EncodingThread::drain(const std::function<bool()> &cancelled) const {
    while (thread_.runs() && !cancelled() && !thread_.endsWithin(cancelInterval))
        continue;
}

void EncodingThread::join() {
    if (thread_.runs())
        thread_.wait();
}

void EncodingThread::leave() {
    if (!thread_.runs())
        return;
    if (thread_.endsWithin(patience))
        thread_.wait();
    else
        lingering::leave(thread_.release());
}

} // namespace lumetwin::media::ffmpeg
