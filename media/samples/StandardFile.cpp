// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/MediaError.h"
#include "media/samples/Formats.h"

#include <cerrno>

namespace lumetwin::media::images {

namespace {

[[noreturn]] void failWithErrno(const std::filesystem::path &file, MediaOperation operation, int number) {
    throw MediaError::ofSystem(file, operation, number);
}

StandardFile open(const std::filesystem::path &file, const char *mode, MediaOperation operation) {
    StandardFile stream(std::fopen(file.c_str(), mode));
    if (!stream)
        failWithErrno(file, operation, errno);
    return stream;
}

} // namespace

StandardFile openForReading(const std::filesystem::path &file) {
    return open(file, "rbe", MediaOperation::open);
}

StandardFile openForWriting(const std::filesystem::path &file) {
    return open(file, "wbe", MediaOperation::create);
}

void closeWritten(StandardFile stream, const std::filesystem::path &file) {
    const bool failed = std::ferror(stream.get()) != 0;
    if (std::fclose(stream.release()) != 0 || failed)
        failWithErrno(file, MediaOperation::write, errno ? errno : EIO);
}

MediaError writingError(const std::filesystem::path &file, const std::string &libraryWords) {
    const MediaReason reason = systemReason(errno);
    if (reason != MediaReason::other)
        return MediaError::ofSystem(file, MediaOperation::write, errno);
    return {file, MediaOperation::write, 0, MediaReason::dataRefused, libraryWords};
}

} // namespace lumetwin::media::images
