// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/ffmpeg/FileIO.h"

#include <memory>

namespace lumetwin::media::ffmpeg {

/// A demuxer that reads only an opened file, with its own position.
class Input {
public:
    /// Reads the headers. Throws MediaError ("Cannot open …").
    explicit Input(const InputFile &file);

    AVFormatContext *get() const { return context_.get(); }
    AVFormatContext *operator->() const { return context_.get(); }
    AVFormatContext &operator*() const { return *context_; }

private:
    struct Close {
        void operator()(AVFormatContext *context) const { avformat_close_input(&context); }
    };

    std::unique_ptr<FileIO> io_; ///< must outlive the context that reads from it
    std::unique_ptr<AVFormatContext, Close> context_;
};

} // namespace lumetwin::media::ffmpeg
