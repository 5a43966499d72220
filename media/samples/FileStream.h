// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/InputFile.h"
#include "media/MediaError.h"
#include "media/OutputFile.h"

#include <cstdio>
#include <memory>
#include <string>

namespace lumetwin::media::images {

struct CloseStream {
    void operator()(std::FILE *stream) const { std::fclose(stream); }
};

/// A stream of the C library over an opened file, for libraries that want one. It has a position of its own.
using FileStream = std::unique_ptr<std::FILE, CloseStream>;

/// Throw MediaError where memory is short.
FileStream streamOf(const InputFile &file);
FileStream streamOf(const OutputFile &file);
/// Closes a stream that was written to; throws MediaError when something of it could not be written.
void closeWritten(FileStream stream, const OutputFile &file);

/// The error of a library that could not write: the system's reason, where it left one in errno, with the library's
/// words.
MediaError writingError(const std::filesystem::path &file, const std::string &libraryWords);

} // namespace lumetwin::media::images
