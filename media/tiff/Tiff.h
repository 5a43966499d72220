// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MediaError.h"

#include <tiffio.h>

#include <filesystem>
#include <memory>
#include <string>

namespace lumetwin::media::images {

struct CloseTiff {
    void operator()(TIFF *tiff) const { TIFFClose(tiff); }
};

/// An open TIFF file and the library's latest words about it.
struct TiffFile {
    std::filesystem::path file;
    std::string message;
    std::unique_ptr<TIFF, CloseTiff> tiff;

    /// Mode as the library's: "r" or "w". Throws MediaError.
    TiffFile(const std::filesystem::path &path, const char *mode);
    TiffFile(const TiffFile &) = delete;

    TIFF *get() const { return tiff.get(); }
    /// Throws MediaError with the given reason and the library's latest words.
    [[noreturn]] void fail(MediaOperation operation, MediaReason reason) const;
};

} // namespace lumetwin::media::images
