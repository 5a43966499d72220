// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/FrameScan.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

namespace lumetwin::media::ffmpeg {

namespace {

// Writers that know no rate state the inverse of their clock's tick.
constexpr double fastestStated = 1000;

Fraction tickOf(const AVStream &stream) {
    return {stream.time_base.num, stream.time_base.den};
}

/// The end of the last of the frames that begin at these times: as their duration together is stated, else as if the
/// last one were as long as the frame before.
std::int64_t endOf(const std::vector<std::int64_t> &starts, std::int64_t stated) {
    const std::size_t count = starts.size();
    if (count == 0)
        return 0;
    if (stated > starts.back() - starts.front())
        return starts.front() + stated;
    return starts.back() + (count > 1 ? starts[count - 1] - starts[count - 2] : 0);
}

/// What the index says; nothing where it does not list every frame, or lists frames that an edit list hides: then the
/// times of decoding, which it holds, do not follow each other as those of showing do.
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

/// Coding runs ahead of showing by some frames, which are left out after the first one: no gap that was meant.
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

/// The packets of one track, from the beginning to the end.
class Packets {
public:
    Packets(const InputFile &file, int stream) : input_(file), stream_(stream) {
        for (unsigned index = 0; index < input_->nb_streams; ++index)
            if (static_cast<int>(index) != stream)
                input_->streams[index]->discard = AVDISCARD_ALL;
    }

    /// Null at the end.
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
    decoder->framerate = {0, 1}; // what the demuxer made up
    if (avcodec_open2(decoder.get(), decoder->codec, nullptr) < 0 || decoder->framerate.num < 1)
        return {};
    const Fraction rate{decoder->framerate.num, decoder->framerate.den};
    return rate.value() <= fastestStated ? rate : Fraction{};
}

} // namespace lumetwin::media::ffmpeg
