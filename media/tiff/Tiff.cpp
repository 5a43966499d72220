// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/tiff/Tiff.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>

namespace lumetwin::media::images {

namespace {

constexpr tmsize_t allocationLimit = tmsize_t{1} << 31; // bytes that one strip or tile may ask for

int keepError(TIFF *, void *user, const char *, const char *format, va_list arguments) {
    char text[256];
    std::vsnprintf(text, sizeof(text), format, arguments);
    *static_cast<std::string *>(user) = text;
    return 1;
}

int passOverWarning(TIFF *, void *, const char *, const char *, va_list) {
    return 1;
}

} // namespace

TiffFile::TiffFile(const std::filesystem::path &path, const char *mode) : file(path) {
    const std::unique_ptr<TIFFOpenOptions, void (*)(TIFFOpenOptions *)> options(TIFFOpenOptionsAlloc(),
                                                                                TIFFOpenOptionsFree);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keepError, &message);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), passOverWarning, nullptr);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), allocationLimit);
    errno = 0;
    tiff.reset(TIFFOpenExt(path.c_str(), mode, options.get()));
    if (tiff)
        return;
    if (*mode == 'w' && errno != 0)
        throw MediaError::ofSystem(file, MediaOperation::create, errno);
    fail(*mode == 'r' ? MediaOperation::open : MediaOperation::create, MediaReason::damaged);
}

void TiffFile::fail(MediaOperation operation, MediaReason reason) const {
    throw MediaError(file, operation, 0, reason, message);
}

} // namespace lumetwin::media::images
