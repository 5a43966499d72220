// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/ffmpeg/FileIO.h"

#include <memory>

namespace lumetwin::media::ffmpeg {

/// How much is read when a file is opened: the container's headers, or also the first packets of streams whose headers
/// leave something open, such as the shape of pixels. Some of these are decoded.
enum class Opening { headers, streams };

/// A demuxer that reads only an opened file, with its own position.
class Input {
public:
    /// Throws MediaError ("Cannot open …").
    explicit Input(const InputFile &file, Opening opening = Opening::streams);

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
