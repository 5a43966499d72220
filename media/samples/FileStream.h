// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/InputFile.h"
#include "media/MediaError.h"
#include "media/OutputFile.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace lumetwin::media::images {

struct CloseStream {
    void operator()(std::FILE *stream) const { std::fclose(stream); }
};

/// A C stream for an opened file, for libraries that need one. It has its own position.
using FileStream = std::unique_ptr<std::FILE, CloseStream>;

/// These throw MediaError without memory.
FileStream streamOf(const InputFile &file);
/// A part of the file, up to its end or to `end`, whichever is first.
FileStream streamOf(const InputFile &file, std::uint64_t begin, std::uint64_t end);
FileStream streamOf(const OutputFile &file);
/// Closes a stream after writing. Throws MediaError when some data could not be written.
void closeWritten(FileStream stream, const OutputFile &file);

/// The error of a library that failed to write: the system's reason if errno is set, and the library's message.
MediaError writingError(const std::filesystem::path &file, const std::string &libraryWords);

} // namespace lumetwin::media::images
