// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/MediaError.h"
#include "media/images/Formats.h"

#include <cerrno>
#include <system_error>

namespace lumetwin::media::images {

namespace {

[[noreturn]] void failWithErrno(const std::filesystem::path &file, const char *operation, int number) {
    throw MediaError(file, operation, -number, std::generic_category().message(number));
}

StandardFile open(const std::filesystem::path &file, const char *mode, const char *operation) {
    StandardFile stream(std::fopen(file.c_str(), mode));
    if (!stream)
        failWithErrno(file, operation, errno);
    return stream;
}

} // namespace

StandardFile openForReading(const std::filesystem::path &file) {
    return open(file, "rbe", "Cannot open");
}

StandardFile openForWriting(const std::filesystem::path &file) {
    return open(file, "wbe", "Cannot create");
}

void closeWritten(StandardFile stream, const std::filesystem::path &file) {
    const bool failed = std::ferror(stream.get()) != 0;
    if (std::fclose(stream.release()) != 0 || failed)
        failWithErrno(file, "Cannot write", errno ? errno : EIO);
}

} // namespace lumetwin::media::images
