// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/FrameScan.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

namespace lumetwin::media::ffmpeg {

namespace {

// Writers that do not know the rate write the inverse of their clock's tick instead.
constexpr double fastestStated = 1000;

Fraction tickOf(const AVStream &stream) {
    return {stream.time_base.num, stream.time_base.den};
}

/// The end of the last frame: from the stated total duration, otherwise as if the last frame had the duration of the
/// frame before.
std::int64_t endOf(const std::vector<std::int64_t> &starts, std::int64_t stated) {
    const std::size_t count = starts.size();
    if (count == 0)
        return 0;
    if (stated > starts.back() - starts.front())
        return starts.front() + stated;
    return starts.back() + (count > 1 ? starts[count - 1] - starts[count - 2] : 0);
}

/// The frame times from the index; nullopt when it does not list every frame, or when an edit list hides frames: the
/// index has decoding times, which then differ from the presentation times.
std::optional<FrameTimes> indexedFrames(AVStream &stream) {
    const int count = avformat_index_get_entries_count(&stream);
    if (stream.nb_frames < 1 || count < 1)
        return std::nullopt;
    FrameTimes times;
    times.tick = tickOf(stream);
    for (int index = 0; index < count; ++index) {
        const AVIndexEntry *entry = avformat_index_get_entry(&stream, index);
        if (entry->flags & AVINDEX_DISCARD_FRAME)
            return std::nullopt;
        times.starts.push_back(entry->timestamp);
    }
    std::ranges::sort(times.starts);
    times.end = endOf(times.starts, stream.duration == AV_NOPTS_VALUE ? 0 : stream.duration);
    return times;
}

/// Removes the gap after the first frame that comes from the reordering delay. It is not intended by the author.
void closeFirstGap(std::vector<std::int64_t> &starts) {
    if (starts.size() < 3)
        return;
    std::int64_t shortest = starts[2] - starts[1];
    for (std::size_t index = 2; index + 1 < starts.size(); ++index)
        shortest = std::min(shortest, starts[index + 1] - starts[index]);
    const std::int64_t gap = starts[1] - starts[0] - shortest;
    for (std::size_t index = 1; index < starts.size(); ++index)
        starts[index] -= std::max<std::int64_t>(gap, 0);
}

/// Reads the packets of one track from beginning to end.
class Packets {
public:
    Packets(const InputFile &file, int stream) : input_(file), stream_(stream) {
        for (unsigned index = 0; index < input_->nb_streams; ++index)
            if (static_cast<int>(index) != stream)
                input_->streams[index]->discard = AVDISCARD_ALL;
    }

    /// The next packet; null at the end.
    const AVPacket *next() {
        do {
            av_packet_unref(packet_.get());
            if (av_read_frame(input_.get(), packet_.get()) < 0)
                return nullptr;
        } while (packet_->stream_index != stream_);
        return packet_.get();
    }

private:
    Input input_;
    int stream_;
    Packet packet_ = makePacket();
};

} // namespace

bool isWithoutTimes(const AVFormatContext &input) {
    return (input.iformat->flags & AVFMT_NOTIMESTAMPS) != 0;
}

bool seeksToAnyPicture(const AVFormatContext &input) {
    return std::string_view(input.iformat->name) == "mpegts";
}

bool countsAsCoded(const AVFormatContext &input) {
    return std::string_view(input.iformat->name) == "avi";
}

FrameTimes scanFrames(const InputFile &file, const AVFormatContext &input, const AVStream &stream,
                      const std::function<bool()> &cancelled) {
    if (auto indexed = indexedFrames(*input.streams[stream.index]))
        return std::move(*indexed);
    FrameTimes times;
    times.tick = tickOf(stream);
    std::int64_t last = std::numeric_limits<std::int64_t>::min();
    std::int64_t lastDuration = 0;
    Packets packets(file, stream.index);
    while (const AVPacket *packet = cancelled && cancelled() ? nullptr : packets.next()) {
        if (packet->flags & AV_PKT_FLAG_DISCARD)
            continue;
        const std::int64_t time = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
        times.starts.push_back(time != AV_NOPTS_VALUE ? time : times.starts.empty() ? 0 : times.starts.back() + 1);
        if (times.starts.back() > last) {
            last = times.starts.back();
            lastDuration = packet->duration;
        }
    }
    std::ranges::sort(times.starts);
    if (countsAsCoded(input))
        closeFirstGap(times.starts);
    times.end = endOf(times.starts, lastDuration > 0 ? last - times.starts.front() + lastDuration : 0);
    return times;
}

Fraction statedRate(const std::filesystem::path &file, const AVStream &stream) {
    const Codec decoder = makeDecoder(file, stream);
    decoder->framerate = {0, 1}; // ignore the demuxer's guess
    if (avcodec_open2(decoder.get(), decoder->codec, nullptr) < 0 || decoder->framerate.num < 1)
        return {};
    const Fraction rate{decoder->framerate.num, decoder->framerate.den};
    return rate.value() <= fastestStated ? rate : Fraction{};
}

} // namespace lumetwin::media::ffmpeg
