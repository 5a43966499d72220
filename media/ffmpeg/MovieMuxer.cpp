// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/MovieMuxer.h"

#include "media/ffmpeg/MovieHeader.h"
#include "media/ffmpeg/PackingMarks.h"

#include <new>

namespace lumetwin::media::ffmpeg {

namespace {

constexpr MediaOperation operation = MediaOperation::write;
constexpr const char *fragmentDuration = "2000000"; // microseconds

const char *nameOf(Container container) {
    switch (container) {
    case Container::quickTime:
        return "mov";
    case Container::matroska:
        return "matroska";
    default:
        return "mp4";
    }
}

} // namespace

MovieMuxer::MovieMuxer(const OutputFile &file, Container container)
    : path_(file.path()), io_(file), container_(container) {
    AVFormatContext *context = nullptr;
    check(avformat_alloc_output_context2(&context, nullptr, nameOf(container), nullptr), path_, operation);
    context_.reset(context);
    context_->pb = io_.context();
    if (isMatroska())
        context_->flags |= AVFMT_FLAG_BITEXACT; // no random identifiers: the same film becomes the same bytes
}

AVStream &MovieMuxer::addStream() {
    AVStream *stream = avformat_new_stream(context_.get(), nullptr);
    if (!stream)
        throw std::bad_alloc();
    return *stream;
}

void MovieMuxer::announce(AVStream &stream, const std::optional<StereoPacking> &packing) const {
    if (!isMatroska())
        return;
    stream.codecpar->codec_tag = 0; // the tags of movies
    if (packing)
        markStream(stream, *packing);
}

void MovieMuxer::writeHeader(const MovieTags &tags, int timeScale) {
    for (const auto &[key, value] : muxerTags(tags))
        av_dict_set(&context_->metadata, key.c_str(), value.c_str(), 0);
    AVDictionary *options = nullptr;
    if (!isMatroska()) {
        // Edit lists place the first picture and the first sound at 0; by itself the muxer writes none into fragments.
        av_dict_set(&options, "movflags", "+hybrid_fragmented", 0);
        av_dict_set(&options, "use_editlist", "1", 0);
        av_dict_set(&options, "frag_duration", fragmentDuration, 0);
        av_dict_set_int(&options, "video_track_timescale", timeScale, 0);
        av_dict_set_int(&options, "movie_timescale", timeScale, 0);
    }
    const int code = avformat_write_header(context_.get(), &options);
    av_dict_free(&options);
    check(code, path_, operation);
}

void MovieMuxer::write(AVPacket &packet, const AVStream &stream, AVRational base) {
    const std::lock_guard lock(writing_);
    packet.stream_index = stream.index;
    av_packet_rescale_ts(&packet, base, stream.time_base);
    check(av_interleaved_write_frame(context_.get(), &packet), path_, operation);
}

void MovieMuxer::finish() {
    check(av_write_trailer(context_.get()), path_, operation);
    avio_flush(context_->pb);
    check(context_->pb->error, path_, operation);
}

} // namespace lumetwin::media::ffmpeg
