// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/OutputFile.h"

#include <filesystem>

namespace lumetwin::media {

/// An output file while it is written. It is called "NAME.EXT.partial"; finish() renames it to its final name,
/// replacing an existing file. So a file with its final name is never incomplete. If neither finish() nor discard() is
/// called, the partial file stays, so that its data can be saved, unless nothing was written.
class PartialFile {
public:
    /// Creates the partial file, or opens an existing one, which keeps its content until the first write. Throws
    /// MediaError, which names the output.
    explicit PartialFile(std::filesystem::path output);
    ~PartialFile();
    PartialFile(const PartialFile &) = delete;
    PartialFile &operator=(const PartialFile &) = delete;

    /// The partial name of an output. A name that is too long for the suffix (NAME_MAX bytes) is shortened.
    static std::filesystem::path nameFor(const std::filesystem::path &output);

    const OutputFile &file() const { return file_; }

    /// Call when everything is written: syncs the file to disk and renames it. Throws MediaError, which names the
    /// output.
    void finish();
    /// Removes the partial file.
    void discard() noexcept;

private:
    std::filesystem::path output_;
    std::filesystem::path path_;
    OutputFile file_;
    bool isOver_ = false; ///< finished or discarded
};

} // namespace lumetwin::media
