// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

namespace lumetwin::media {

/// The names of an output: while it is written it is called "NAME.EXT.partial", and finish() gives it its own name in
/// one rename, replacing what was there. So nobody meets a half file under a finished name. Creates and removes nothing
/// by itself: who writes opens path(), and a writer that fails leaves the partial file.
class PartialFile {
public:
    explicit PartialFile(std::filesystem::path output);

    /// The partial name of an output; of a name that leaves no room for the suffix (NAME_MAX bytes), the end is cut.
    static std::filesystem::path nameFor(const std::filesystem::path &output);

    const std::filesystem::path &path() const { return path_; }
    const std::filesystem::path &output() const { return output_; }

    /// The file is complete and closed. Throws MediaError, which names the output.
    void finish() const;
    /// Removes the partial file, if there is one.
    void discard() const noexcept;

private:
    std::filesystem::path output_;
    std::filesystem::path path_;
};

/// Writes a partial file's bytes from its beginning. Errors are MediaErrors that name the output, with the system's
/// words.
class PartialFileWriter {
public:
    /// Creates the file, or empties it.
    explicit PartialFileWriter(const PartialFile &file);
    ~PartialFileWriter();
    PartialFileWriter(const PartialFileWriter &) = delete;
    PartialFileWriter &operator=(const PartialFileWriter &) = delete;

    void write(std::span<const std::uint8_t> bytes);
    /// Some file systems tell only now that the disk is full.
    void close();

private:
    std::filesystem::path output_;
    int descriptor_ = -1;
};

} // namespace lumetwin::media
