// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/FrameSearch.h"

#include "media/DecodingCost.h"
#include "media/SignsOfLife.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace lumetwin::media::ffmpeg {

namespace {

constexpr int packetsToRandomAccess = 2000; ///< read before a random access picture is found
constexpr int mostFrames = 1200;            ///< decoded before the wanted one: ten seconds of 120 frames
constexpr double longestGroup = 10;         ///< seconds, the same
constexpr unsigned mostThreads = 4;         ///< each that has a frame of its own delays the first one

std::int64_t timeOf(const AVPacket &packet) {
    return packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
}

int threads() {
    return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, mostThreads));
}

} // namespace

FrameSearch::FrameSearch(std::filesystem::path file, AVFormatContext &input, const AVStream &stream, bool bothViews)
    : file_(std::move(file)), tick_(stream.time_base), codec_(stream.codecpar->codec_id), bothViews_(bothViews),
      decoder_(file_, stream), packets_(file_, input, stream.index), pairing_(cropping(*stream.codecpar), bothViews) {
    pixelsOfBothViews_ = 2.0 * stream.codecpar->width * stream.codecpar->height;
    if (bothViews_ && codec_ == AV_CODEC_ID_HEVC)
        packets_.guardViews(decoder_.configuration());
}

void FrameSearch::open(bool bothViews) {
    if (bothViews)
        decoder_.askForBothViews();
    decoder_.open();
}

std::optional<Frame> FrameSearch::taken(FramePointer decoded) {
    pixelShape_ = decoded->sample_aspect_ratio;
    return pairing_.take(std::move(decoded));
}

const AVPacket *FrameSearch::nextKeyPacket() {
    for (int count = 0; count < packetsToRandomAccess; ++count) {
        const AVPacket *packet = packets_.next();
        if (!packet || packet->flags & AV_PKT_FLAG_KEY)
            return packet;
    }
    return nullptr;
}

std::optional<Frame> FrameSearch::randomAccessFrame(const Omissions &omitted) {
    const AVPacket *packet = nextKeyPacket();
    if (!packet)
        return std::nullopt;
    leftSecondViewOut_ = omitted.slowSecondView && bothViews_ && isSlowToDecode(pixelsOfBothViews_, packet->size);
    decoder_.useThreads(threads(), VideoDecoder::Sharing::partsOfFrames);
    if (omitted.loopFilter)
        decoder_.leaveOutLoopFilter();
    open(bothViews_ && !leftSecondViewOut_);
    std::optional<Frame> found;
    const auto sink = [&](FramePointer decoded) {
        found = taken(std::move(decoded));
        return !found;
    };
    if (decoder_.decode(packet, sink) && decoder_.decode(nullptr, sink))
        found = pairing_.finish();
    return found;
}

/// Whether the stream says of a picture for certain that no other one needs it. In HEVC, where there are no temporal
/// layers, which its record tells (ISO/IEC 14496-15, 8.3.3.1): pictures of a higher one may need it.
bool FrameSearch::knowsUnreferenced() const {
    if (codec_ == AV_CODEC_ID_H264)
        return true;
    constexpr std::size_t layersAt = 21;
    const std::span<const std::uint8_t> record = decoder_.configuration();
    return codec_ == AV_CODEC_ID_HEVC && !bothViews_ && record.size() > layersAt && record[0] == 1 &&
           (record[layersAt] >> 3 & 7) == 1;
}

bool FrameSearch::isFarEnough(const AVPacket &packet, std::int64_t begin) const {
    const std::int64_t time = timeOf(packet);
    return time != AV_NOPTS_VALUE && static_cast<double>(time - begin) * av_q2d(tick_) > longestGroup;
}

FrameSearch::Result FrameSearch::frameAt(std::int64_t time, Unreferenced unreferenced) {
    const bool leavesOut = unreferenced == Unreferenced::leftOut && knowsUnreferenced();
    decoder_.useThreads(threads(), VideoDecoder::Sharing::frames);
    open(bothViews_);
    const AVPacket *packet = nextKeyPacket();
    if (!packet)
        return {};
    Result result;
    if (timeOf(*packet) != AV_NOPTS_VALUE)
        result.begin = timeOf(*packet);
    const auto handOn = [&](std::optional<Frame> frame) {
        if (!frame)
            return true;
        const bool isLater = frame->time && *frame->time > time;
        if (!isLater || !result.frame)
            result.frame = std::move(frame);
        result.isReached |= !isLater;
        return !isLater;
    };
    const auto sink = [&](FramePointer decoded) { return handOn(taken(std::move(decoded))); };
    std::int64_t lastLeftOut = AV_NOPTS_VALUE; // the lowest number
    bool isWanted = true;
    bool isTooFar = false;
    for (int count = 0; packet && isWanted; ++count, packet = packets_.next()) {
        giveSignOfLife();
        isTooFar = count >= mostFrames || (result.begin && isFarEnough(*packet, *result.begin));
        if (isTooFar)
            break;
        // The duration may be wrong; then the wanted picture is left out, which shows in the end.
        const bool isBefore = leavesOut && packet->pts != AV_NOPTS_VALUE && packet->duration > 0 &&
                              packet->pts + packet->duration <= time;
        decoder_.leaveOutUnreferenced(isBefore);
        if (isBefore)
            lastLeftOut = std::max(lastLeftOut, packet->pts);
        isWanted = decoder_.decode(packet, sink);
    }
    if (isWanted && decoder_.decode(nullptr, sink))
        handOn(pairing_.finish());
    const bool isLeftOut = lastLeftOut != AV_NOPTS_VALUE && (!result.frame || result.frame->time < lastLeftOut);
    result.isDoubtful = isLeftOut && !isTooFar;
    return result;
}

} // namespace lumetwin::media::ffmpeg
