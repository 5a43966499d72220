// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/FileIO.h"

#include <cerrno>
#include <cstdio>
#include <new>

namespace lumetwin::media::ffmpeg {

namespace {

constexpr int bufferSize = 1 << 16;

/// Converts exceptions to negative codes, because FFmpeg's callbacks must return those.
template <typename Action> auto withCode(const Action &action) -> decltype(action()) {
    try {
        return action();
    } catch (const MediaError &error) {
        return AVERROR(error.code() < 0 ? -error.code() : EIO);
    }
}

} // namespace

FileIO::FileIO(const InputFile &file) : input_(file) {
    open(false);
}

FileIO::FileIO(const OutputFile &file) : output_(file) {
    open(true);
}

FileIO::~FileIO() {
    if (output_)
        avio_flush(context_);
    av_freep(&context_->buffer);
    avio_context_free(&context_);
}

void FileIO::open(bool writes) {
    auto *buffer = static_cast<std::uint8_t *>(av_malloc(bufferSize));
    if (!buffer)
        throw std::bad_alloc();
    context_ = avio_alloc_context(buffer, bufferSize, writes ? 1 : 0, this, read, write, seek);
    if (!context_) {
        av_free(buffer);
        throw std::bad_alloc();
    }
}

std::uint64_t FileIO::size() const {
    return input_ ? input_->size() : output_->size();
}

int FileIO::read(void *user, std::uint8_t *buffer, int size) {
    auto &io = *static_cast<FileIO *>(user);
    return withCode([&] {
        const std::span bytes(buffer, static_cast<std::size_t>(size));
        const std::size_t count =
            io.input_ ? io.input_->readAt(io.position_, bytes) : io.output_->readAt(io.position_, bytes);
        io.position_ += count;
        return count > 0 ? static_cast<int>(count) : AVERROR_EOF;
    });
}

int FileIO::write(void *user, const std::uint8_t *buffer, int size) {
    auto &io = *static_cast<FileIO *>(user);
    return withCode([&] {
        io.output_->writeAt(io.position_, {buffer, static_cast<std::size_t>(size)});
        io.position_ += static_cast<std::uint64_t>(size);
        return size;
    });
}

std::int64_t FileIO::seek(void *user, std::int64_t offset, int whence) {
    auto &io = *static_cast<FileIO *>(user);
    return withCode([&]() -> std::int64_t {
        const auto end = [&] { return static_cast<std::int64_t>(io.size()); };
        whence &= ~AVSEEK_FORCE;
        if (whence == AVSEEK_SIZE)
            return end();
        const std::int64_t from = whence == SEEK_CUR   ? static_cast<std::int64_t>(io.position_)
                                  : whence == SEEK_END ? end()
                                                       : 0;
        if (from + offset < 0)
            return AVERROR(EINVAL);
        io.position_ = static_cast<std::uint64_t>(from + offset);
        return from + offset;
    });
}

} // namespace lumetwin::media::ffmpeg
