// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/InputFile.h"
#include "media/MediaError.h"
#include "media/OutputFile.h"

#include <tiffio.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace lumetwin::media::images {

struct CloseTiff {
    void operator()(TIFF *tiff) const { TIFFClose(tiff); }
};

/// The file of the library's callbacks, and their position in it.
struct TiffStream {
    std::optional<InputFile> input;
    std::optional<OutputFile> output;
    std::uint64_t position = 0;
};

/// An open TIFF file and the latest message of the library.
struct TiffFile {
    std::filesystem::path file;
    std::string message;
    TiffStream stream;
    std::unique_ptr<TIFF, CloseTiff> tiff;

    /// These throw MediaError. Files are always written little-endian.
    explicit TiffFile(const InputFile &input);
    explicit TiffFile(const OutputFile &output);
    TiffFile(const TiffFile &) = delete;

    TIFF *get() const { return tiff.get(); }
    /// Throws MediaError with the given reason and the latest message of the library.
    [[noreturn]] void fail(MediaOperation operation, MediaReason reason) const;
};

} // namespace lumetwin::media::images
