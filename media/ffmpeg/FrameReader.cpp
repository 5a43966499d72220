// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/FrameReader.h"

#include "media/BoundedQueue.h"
#include "media/NamedThread.h"
#include "media/StereoMovieFacts.h"
#include "media/ffmpeg/VideoDecoder.h"
#include "media/ffmpeg/VideoPackets.h"
#include "media/ffmpeg/ViewPairing.h"

#include <exception>
#include <utility>

namespace lumetwin::media {

namespace {

// Enough so that decoding, composing and encoding run in parallel.
constexpr std::size_t framesAhead = 3;

} // namespace

struct FrameReader::State {
    ffmpeg::VideoPackets packets;
    ffmpeg::VideoDecoder decoder;
    ffmpeg::ViewPairing pairing;
    const AVPacket *packet = nullptr; ///< the one to decode next
    BoundedQueue<Frame> frames{framesAhead};
    std::optional<Frame> ahead; ///< taken out of the queue, and not asked for yet
    NamedThread thread;

    State(const InputFile &file, AVFormatContext &input, int stream, bool bothViews)
        : packets(file.path(), input, stream), decoder(file.path(), *input.streams[stream]),
          pairing(ffmpeg::cropping(*input.streams[stream]->codecpar), bothViews) {
        // The demuxer may never return the packets of a protected sample entry.
        if (readStereoMovieFacts(file).encrypted)
            throw MediaError(file.path(), MediaOperation::decode, AVERROR(EACCES), MediaReason::encryptedMovie);
        if (bothViews && decoder.askForBothViews())
            packets.guardViews(decoder.configuration());
        decoder.open();
        packet = packets.next();
        thread = NamedThread("decode", [this] { run(); });
    }

    ~State() { frames.discard(); }

    /// Decodes until the queue is closed or the track ends.
    void run() {
        try {
            decodeAll();
            frames.close();
        } catch (...) {
            frames.close(std::current_exception());
        }
    }

    void decodeAll() {
        const auto handOn = [this](std::optional<Frame> frame) { return !frame || frames.push(std::move(*frame)); };
        const auto sink = [&](ffmpeg::FramePointer decoded) { return handOn(pairing.take(std::move(decoded))); };
        for (; packet; packet = packets.next())
            if (!decoder.decode(packet, sink))
                return;
        if (decoder.decode(nullptr, sink))
            handOn(pairing.finish());
    }
};

FrameReader::FrameReader(MovieFile &movie, const VideoTrack &track, Views views)
    : state_(std::make_unique<State>(movie.file(), *movie.state_->input, track.index, views == Views::all)) {}

FrameReader::~FrameReader() = default;

std::optional<Frame> FrameReader::next() {
    if (state_->ahead)
        return std::exchange(state_->ahead, std::nullopt);
    return state_->frames.pop();
}

const Frame *FrameReader::ahead() {
    if (!state_->ahead)
        state_->ahead = state_->frames.pop();
    return state_->ahead ? &*state_->ahead : nullptr;
}

bool FrameReader::damaged() const {
    return state_->packets.damaged() || state_->decoder.damaged();
}

} // namespace lumetwin::media
