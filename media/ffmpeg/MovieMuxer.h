// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieWriter.h"
#include "media/ffmpeg/FileIO.h"

#include <filesystem>
#include <memory>
#include <mutex>

namespace lumetwin::media::ffmpeg {

/// Puts the packets of several tracks into one file: a movie in fragments, so that a file that is never finished can be
/// read up to its last one, and turned into an ordinary movie at the end; or Matroska. Throws MediaError.
class MovieMuxer {
public:
    MovieMuxer(const OutputFile &file, Container container);

    /// A track, to be described before the header is written. It belongs to the muxer.
    AVStream &addStream();
    /// Says in the stream what the container states about eyes in its header; for a stream that is described.
    void announce(AVStream &stream, const std::optional<StereoPacking> &packing) const;
    bool isMatroska() const { return container_ == Container::matroska; }
    /// Times of video are in units of 1/timeScale second.
    void writeHeader(const MovieTags &tags, int timeScale);
    /// From any thread; times are in units of the base.
    void write(AVPacket &packet, const AVStream &stream, AVRational base);
    void finish();

private:
    struct FreeContext {
        void operator()(AVFormatContext *context) const { avformat_free_context(context); }
    };

    std::filesystem::path path_;
    FileIO io_;
    Container container_;
    std::unique_ptr<AVFormatContext, FreeContext> context_;
    std::mutex writing_;
};

} // namespace lumetwin::media::ffmpeg
