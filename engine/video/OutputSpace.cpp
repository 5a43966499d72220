// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/OutputSpace.h"

#include "engine/texts/FileNames.h"
#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

namespace lumetwin {
namespace {

// Encoders reach a bit rate only approximately, and a file system should not be filled completely.
constexpr double margin = 1.1;
constexpr double headroom = 16.0 * 1024 * 1024; // bytes

/// What the file contains already is free, too: the first write replaces it. Negative when unknown: some network and
/// device file systems report no size.
double freeBytes(const media::OutputFile &output) {
    struct statvfs facts {};
    if (::fstatvfs(output.descriptor(), &facts) != 0 || facts.f_blocks == 0)
        return -1;
    constexpr double blockSize = 512; // of st_blocks
    struct stat file {};
    const bool isKnown = ::fstat(output.descriptor(), &file) == 0;
    return static_cast<double>(facts.f_bavail) * static_cast<double>(facts.f_frsize) +
           (isKnown ? static_cast<double>(file.st_blocks) * blockSize : 0);
}

} // namespace

void requireSpace(const media::OutputFile &output, double estimatedBytes) {
    const double available = freeBytes(output);
    const double needed = estimatedBytes * margin + headroom;
    constexpr double mebibyte = 1024.0 * 1024;
    if (available >= 0 && available < needed)
        throw processorError(formatted("error.output.no.space.format", lastPathComponent(output.path()),
                                       needed / mebibyte, available / mebibyte));
}

} // namespace lumetwin
