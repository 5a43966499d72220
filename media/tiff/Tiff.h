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

/// Where the library reads and writes, and its position there.
struct TiffStream {
    std::optional<InputFile> input;
    std::optional<OutputFile> output;
    std::uint64_t position = 0;
};

/// An open TIFF file and the library's latest words about it.
struct TiffFile {
    std::filesystem::path file;
    std::string message;
    TiffStream stream;
    std::unique_ptr<TIFF, CloseTiff> tiff;

    /// Throw MediaError. What is written is little-endian whatever the machine.
    explicit TiffFile(const InputFile &input);
    explicit TiffFile(const OutputFile &output);
    TiffFile(const TiffFile &) = delete;

    TIFF *get() const { return tiff.get(); }
    /// Throws MediaError with the given reason and the library's latest words.
    [[noreturn]] void fail(MediaOperation operation, MediaReason reason) const;
};

} // namespace lumetwin::media::images
