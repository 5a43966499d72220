// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/OutputFile.h"

#include <filesystem>

namespace lumetwin::media {

/// An output while it is written: it is called "NAME.EXT.partial", and finish() gives it its own name in one rename,
/// replacing what was there. So nobody meets a half file under a finished name. One that is neither finished nor
/// discarded stays as it is, for whoever wants to save something of it, unless nothing was written.
class PartialFile {
public:
    /// Creates the partial file, or empties the one that lies there. Throws MediaError, which names the output.
    explicit PartialFile(std::filesystem::path output);
    ~PartialFile();
    PartialFile(const PartialFile &) = delete;
    PartialFile &operator=(const PartialFile &) = delete;

    /// The partial name of an output; of a name that leaves no room for the suffix (NAME_MAX bytes), the end is cut.
    static std::filesystem::path nameFor(const std::filesystem::path &output);

    const OutputFile &file() const { return file_; }

    /// All is written: puts it on the disk and gives it its name. Throws MediaError, which names the output.
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
