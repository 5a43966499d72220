// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/Input.h"

#include <cerrno>
#include <new>
#include <utility>

namespace lumetwin::media::ffmpeg {

namespace {

/// What a file refers to is not ours to open.
int refuse(AVFormatContext *, AVIOContext **, const char *, int, AVDictionary **) {
    return AVERROR(EPERM);
}

} // namespace

Input::Input(const InputFile &file, Opening opening) : io_(std::make_unique<FileIO>(file)) {
    if (file.size() == 0)
        throw MediaError(file.path(), MediaOperation::open, AVERROR_INVALIDDATA, MediaReason::emptyFile);
    AVFormatContext *context = avformat_alloc_context();
    if (!context)
        throw std::bad_alloc();
    context->pb = io_->context();
    context->io_open = refuse;
    // The name identifies the type of raw streams. FFmpeg frees the context when this fails.
    check(avformat_open_input(&context, file.path().c_str(), nullptr, nullptr), file.path(), MediaOperation::open);
    context_.reset(context);
    if (opening == Opening::streams)
        check(avformat_find_stream_info(context, nullptr), file.path(), MediaOperation::open);
}

} // namespace lumetwin::media::ffmpeg
