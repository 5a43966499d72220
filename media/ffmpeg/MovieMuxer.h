// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieWriter.h"
#include "media/ffmpeg/FileIO.h"

#include <filesystem>
#include <memory>
#include <mutex>

namespace lumetwin::media::ffmpeg {

/// Puts the packets of several tracks into one file: in fragments, so that a file that is never finished can be read up
/// to its last one, and turned into an ordinary movie at the end. Throws MediaError.
class MovieMuxer {
public:
    MovieMuxer(const OutputFile &file, Container container);

    /// A track, to be described before the header is written. It belongs to the muxer.
    AVStream &addStream();
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
    std::unique_ptr<AVFormatContext, FreeContext> context_;
    std::mutex writing_;
};

} // namespace lumetwin::media::ffmpeg
