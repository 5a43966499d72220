// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/samples/FileStream.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <optional>

#include <unistd.h>

namespace lumetwin::media::images {

namespace {

constexpr std::uint64_t noEnd = std::numeric_limits<std::uint64_t>::max();

/// The file of a stream, the part of it that is read, and the position in that part.
struct Cookie {
    std::optional<InputFile> input;
    std::optional<OutputFile> output;
    std::uint64_t position = 0;
    std::uint64_t begin = 0;
    std::uint64_t end = noEnd;

    std::uint64_t inputSize() const {
        const std::uint64_t last = std::min(end, input->size());
        return last > begin ? last - begin : 0;
    }
};

/// The position after moving by `offset`, as with lseek(); nullopt before the beginning.
std::optional<std::uint64_t> moved(const Cookie &cookie, off64_t offset, int whence) {
    std::uint64_t from = 0;
    if (whence == SEEK_CUR)
        from = cookie.position;
    else if (whence == SEEK_END)
        from = cookie.input ? cookie.inputSize() : cookie.output->size();
    const auto position = static_cast<off64_t>(from) + offset;
    return position < 0 ? std::nullopt : std::optional(static_cast<std::uint64_t>(position));
}

/// Runs a callback of the C library. Reports errors by errno.
template <typename Action> auto withErrno(const Action &action, decltype(action()) failed) {
    try {
        return action();
    } catch (const MediaError &error) {
        errno = error.code() < 0 ? -error.code() : EIO;
    }
    return failed;
}

ssize_t readStream(void *user, char *buffer, size_t size) {
    auto &cookie = *static_cast<Cookie *>(user);
    return withErrno(
        [&] {
            const std::uint64_t left = cookie.end - cookie.begin - std::min(cookie.position, cookie.end - cookie.begin);
            const std::span bytes(reinterpret_cast<std::uint8_t *>(buffer),
                                  static_cast<std::size_t>(std::min<std::uint64_t>(size, left)));
            const std::size_t count = cookie.input->readAt(cookie.begin + cookie.position, bytes);
            cookie.position += count;
            return static_cast<ssize_t>(count);
        },
        -1);
}

ssize_t writeStream(void *user, const char *buffer, size_t size) {
    auto &cookie = *static_cast<Cookie *>(user);
    const std::span bytes(reinterpret_cast<const std::uint8_t *>(buffer), size);
    return withErrno(
        [&] {
            cookie.output->writeAt(cookie.position, bytes);
            cookie.position += size;
            return static_cast<ssize_t>(size);
        },
        0); // by which the C library knows an error
}

int seekStream(void *user, off64_t *offset, int whence) {
    auto &cookie = *static_cast<Cookie *>(user);
    return withErrno(
        [&] {
            const auto position = moved(cookie, *offset, whence);
            if (!position) {
                errno = EINVAL;
                return -1;
            }
            cookie.position = *position;
            *offset = static_cast<off64_t>(*position);
            return 0;
        },
        -1);
}

int closeStream(void *user) {
    delete static_cast<Cookie *>(user);
    return 0;
}

FileStream open(std::unique_ptr<Cookie> cookie, const char *mode, const std::filesystem::path &file) {
    FileStream stream(fopencookie(cookie.get(), mode, {readStream, writeStream, seekStream, closeStream}));
    if (!stream)
        throw MediaError::ofSystem(file, MediaOperation::open, errno);
    static_cast<void>(cookie.release()); // closeStream() has it
    return stream;
}

} // namespace

FileStream streamOf(const InputFile &file) {
    return streamOf(file, 0, noEnd);
}

FileStream streamOf(const InputFile &file, std::uint64_t begin, std::uint64_t end) {
    return open(std::make_unique<Cookie>(Cookie{file, std::nullopt, 0, begin, std::max(begin, end)}), "r", file.path());
}

FileStream streamOf(const OutputFile &file) {
    return open(std::make_unique<Cookie>(Cookie{std::nullopt, file}), "w", file.path());
}

void closeWritten(FileStream stream, const OutputFile &file) {
    const bool failed = std::ferror(stream.get()) != 0;
    if (std::fclose(stream.release()) != 0 || failed)
        throw MediaError::ofSystem(file.path(), MediaOperation::write, errno ? errno : EIO);
}

MediaError writingError(const std::filesystem::path &file, const std::string &libraryWords) {
    const MediaReason reason = systemReason(errno);
    if (reason != MediaReason::other)
        return MediaError::ofSystem(file, MediaOperation::write, errno);
    return {file, MediaOperation::write, 0, MediaReason::dataRefused, libraryWords};
}

} // namespace lumetwin::media::images
