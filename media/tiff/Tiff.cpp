// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/tiff/Tiff.h"

#include "media/samples/FileStream.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <span>

namespace lumetwin::media::images {

namespace {

constexpr tmsize_t allocationLimit = tmsize_t{1} << 31; // bytes, the maximum for one strip or tile

int keepError(TIFF *, void *user, const char *, const char *format, va_list arguments) {
    char text[256];
    std::vsnprintf(text, sizeof(text), format, arguments);
    *static_cast<std::string *>(user) = text;
    return 1;
}

int passOverWarning(TIFF *, void *, const char *, const char *, va_list) {
    return 1;
}

/// Runs a callback of the library. Reports errors by the result and errno.
template <typename Action> auto withErrno(const Action &action, decltype(action()) failed) {
    try {
        return action();
    } catch (const MediaError &error) {
        errno = error.code() < 0 ? -error.code() : EIO;
    }
    return failed;
}

std::uint64_t sizeOf(const TiffStream &stream) {
    return stream.input ? stream.input->size() : stream.output->size();
}

tmsize_t readStream(thandle_t user, void *buffer, tmsize_t size) {
    auto &stream = *static_cast<TiffStream *>(user);
    const std::span bytes(static_cast<std::uint8_t *>(buffer), static_cast<std::size_t>(size));
    return withErrno(
        [&] {
            const std::size_t count = stream.input ? stream.input->readAt(stream.position, bytes)
                                                   : stream.output->readAt(stream.position, bytes);
            stream.position += count;
            return static_cast<tmsize_t>(count);
        },
        tmsize_t{-1});
}

tmsize_t writeStream(thandle_t user, void *buffer, tmsize_t size) {
    auto &stream = *static_cast<TiffStream *>(user);
    const std::span bytes(static_cast<const std::uint8_t *>(buffer), static_cast<std::size_t>(size));
    return withErrno(
        [&] {
            stream.output->writeAt(stream.position, bytes);
            stream.position += bytes.size();
            return size;
        },
        tmsize_t{-1});
}

toff_t seekStream(thandle_t user, toff_t offset, int whence) {
    auto &stream = *static_cast<TiffStream *>(user);
    return withErrno(
        [&] {
            const std::uint64_t from = whence == SEEK_CUR   ? stream.position
                                       : whence == SEEK_END ? sizeOf(stream)
                                                            : std::uint64_t{0};
            return toff_t{stream.position = from + offset};
        },
        ~toff_t{0});
}

int closeStream(thandle_t) {
    return 0;
}

toff_t streamSize(thandle_t user) {
    return withErrno([&] { return toff_t{sizeOf(*static_cast<TiffStream *>(user))}; }, toff_t{0});
}

std::unique_ptr<TIFF, CloseTiff> open(TiffFile &file, const char *mode) {
    const std::unique_ptr<TIFFOpenOptions, void (*)(TIFFOpenOptions *)> options(TIFFOpenOptionsAlloc(),
                                                                                TIFFOpenOptionsFree);
    errno = 0;
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keepError, &file.message);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), passOverWarning, nullptr);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), allocationLimit);
    return std::unique_ptr<TIFF, CloseTiff>(TIFFClientOpenExt(file.file.c_str(), mode, &file.stream, readStream,
                                                              writeStream, seekStream, closeStream, streamSize, nullptr,
                                                              nullptr, options.get()));
}

} // namespace

TiffFile::TiffFile(const InputFile &input)
    : file(input.path()), stream{input, std::nullopt, 0}, tiff(open(*this, "r")) {
    if (!tiff)
        fail(MediaOperation::open, MediaReason::damaged);
}

TiffFile::TiffFile(const OutputFile &output)
    : file(output.path()), stream{std::nullopt, output, 0}, tiff(open(*this, "wl")) {
    if (!tiff)
        throw writingError(file, message);
}

void TiffFile::fail(MediaOperation operation, MediaReason reason) const {
    throw MediaError(file, operation, 0, reason, message);
}

} // namespace lumetwin::media::images
