// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ReportFile.h"

#include "engine/inspection/MediaKinds.h"
#include "tools/BatchOptions.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace lumetwin::batch {
namespace {

using Path = std::filesystem::path;

std::error_code lastError() {
    return {errno, std::generic_category()};
}

[[noreturn]] void throwUsageError(const Path &file, const std::error_code &error) {
    throw UsageError("the report cannot be written: " + file.string() + ": " + error.message());
}

/// The path with symbolic links resolved, so that the link's target is replaced and not the link.
Path resolvedPath(const Path &file) {
    std::error_code error;
    const Path path = std::filesystem::canonical(file, error);
    return error ? file : path;
}

void write(std::FILE *stream, const std::string &text) {
    if (std::fwrite(text.data(), 1, text.size(), stream) != text.size() || std::fflush(stream) != 0)
        throw std::system_error(lastError());
}

} // namespace

ReportFile::ReportFile(const Path &file) {
    if (file == "-")
        return;
    target_ = resolvedPath(file);
    if (isMediaFile(target_))
        throw UsageError("the report would have the name of a video or photo: " + file.string());
    std::error_code ignored;
    const std::filesystem::file_status kind = std::filesystem::status(target_, ignored);
    if (std::filesystem::is_directory(kind))
        throwUsageError(file, std::make_error_code(std::errc::is_a_directory));
    if (!std::filesystem::exists(kind) || std::filesystem::is_regular_file(kind))
        partial_ = target_.string() + ".partial";
    open(partial_.empty() ? target_ : partial_);
}

void ReportFile::open(const Path &path) {
    // O_NOFOLLOW: a symbolic link with the partial name must not redirect the output.
    const int flags = partial_.empty() ? O_WRONLY : O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW;
    const int descriptor = ::open(path.c_str(), flags | O_CLOEXEC, 0666);
    if (descriptor < 0)
        throwUsageError(path, lastError());
    stream_.reset(::fdopen(descriptor, "w"));
}

ReportFile::~ReportFile() {
    std::error_code ignored;
    if (stream_ && !partial_.empty())
        std::filesystem::remove(partial_, ignored);
}

void ReportFile::complete(const std::string &report) {
    if (!stream_)
        return write(stdout, report);
    write(stream_.get(), report);
    if (!partial_.empty()) {
        if (::fsync(::fileno(stream_.get())) != 0)
            throw std::system_error(lastError());
        std::filesystem::rename(partial_, target_);
    }
    stream_.reset();
}

} // namespace lumetwin::batch
