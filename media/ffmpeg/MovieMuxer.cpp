// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/MovieMuxer.h"

#include "media/ffmpeg/MovieHeader.h"

#include <new>

namespace lumetwin::media::ffmpeg {

namespace {

constexpr MediaOperation operation = MediaOperation::write;
constexpr const char *fragmentDuration = "2000000"; // microseconds

} // namespace

MovieMuxer::MovieMuxer(const OutputFile &file, Container container) : path_(file.path()), io_(file) {
    const char *format = container == Container::mpeg4 ? "mp4" : "mov";
    AVFormatContext *context = nullptr;
    check(avformat_alloc_output_context2(&context, nullptr, format, nullptr), path_, operation);
    context_.reset(context);
    context_->pb = io_.context();
}

AVStream &MovieMuxer::addStream() {
    AVStream *stream = avformat_new_stream(context_.get(), nullptr);
    if (!stream)
        throw std::bad_alloc();
    return *stream;
}

void MovieMuxer::writeHeader(const MovieTags &tags, int timeScale) {
    for (const auto &[key, value] : muxerTags(tags))
        av_dict_set(&context_->metadata, key.c_str(), value.c_str(), 0);
    AVDictionary *options = nullptr;
    // Edit lists place the first picture and the first sound at 0; by itself the muxer writes none into fragments.
    av_dict_set(&options, "movflags", "+hybrid_fragmented", 0);
    av_dict_set(&options, "use_editlist", "1", 0);
    av_dict_set(&options, "frag_duration", fragmentDuration, 0);
    av_dict_set_int(&options, "video_track_timescale", timeScale, 0);
    av_dict_set_int(&options, "movie_timescale", timeScale, 0);
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
