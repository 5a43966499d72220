// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"
#include "media/MediaError.h"
#include "media/PartialFile.h"

#include <cstdio>
#include <memory>
#include <string>

/// One reader and one writer for each file format; media/ImageFile.h says what they promise. Writers write to the
/// path they are given, metadata as it is handed to them.
namespace lumetwin::media::images {

struct CloseFile {
    void operator()(std::FILE *file) const { std::fclose(file); }
};
using StandardFile = std::unique_ptr<std::FILE, CloseFile>;

/// Throws MediaError with the system's reason.
StandardFile openForReading(const std::filesystem::path &file);
StandardFile openForWriting(const std::filesystem::path &file);
/// Closes a file that was written to; throws MediaError when something of it could not be written.
void closeWritten(StandardFile stream, const std::filesystem::path &file);

/// The error of a library that could not write: the system's reason, where it left one in errno, with the library's
/// words.
MediaError writingError(const std::filesystem::path &file, const std::string &libraryWords);

StillImage readJpeg(const std::filesystem::path &file, const Cancellation &cancellation);
StillImage readPng(const std::filesystem::path &file, const Cancellation &cancellation);
StillImage readTiff(const std::filesystem::path &file, const Cancellation &cancellation);
StillImage readHeif(const std::filesystem::path &file, const Cancellation &cancellation);
int tiffPageCount(const std::filesystem::path &file);

/// Converts the samples itself.
void writeJpeg(const std::filesystem::path &file, const StillImage &image, double quality,
               const Cancellation &cancellation);
void writePng(const std::filesystem::path &file, const StillImage &image, const Cancellation &cancellation);
void writeTiff(const std::filesystem::path &file, const StillImage &image, const Cancellation &cancellation);
/// The samples are released as they are coded.
void writeHeif(const PartialFile &file, StillImage image, double quality, const Cancellation &cancellation);

/// The picture in a form that files of the kind hold: itself, or converted.
Picture fitted(Picture picture, ImageKind kind, const Cancellation &cancellation);

/// The quantiser of HEVC, 6 to 51 where lower is finer, for a quality of 0.0 to 1.0.
int heifQuantiser(double quality);
/// The quality of the JPEG library, 1 to 100, for a quality of 0.0 to 1.0.
int jpegQuality(double quality);

} // namespace lumetwin::media::images
