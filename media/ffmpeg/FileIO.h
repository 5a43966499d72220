// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/InputFile.h"
#include "media/OutputFile.h"
#include "media/ffmpeg/Ffmpeg.h"

#include <cstdint>
#include <optional>

namespace lumetwin::media::ffmpeg {

/// Lets FFmpeg read or write an opened file, with its own position.
class FileIO {
public:
    explicit FileIO(const InputFile &file);
    explicit FileIO(const OutputFile &file);
    ~FileIO();
    FileIO(const FileIO &) = delete;
    FileIO &operator=(const FileIO &) = delete;

    AVIOContext *context() const { return context_; }

private:
    static int read(void *user, std::uint8_t *buffer, int size);
    static int write(void *user, const std::uint8_t *buffer, int size);
    static std::int64_t seek(void *user, std::int64_t offset, int whence);

    void open(bool writes);
    std::uint64_t size() const;

    std::optional<InputFile> input_;
    std::optional<OutputFile> output_;
    std::uint64_t position_ = 0;
    AVIOContext *context_ = nullptr;
};

} // namespace lumetwin::media::ffmpeg
