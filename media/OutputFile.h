// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

namespace lumetwin::media {

/// A file opened for writing, and its final name for messages. PartialFile gives it that name. Copies share the
/// descriptor, which is closed with the last copy.
class OutputFile {
public:
    /// What happens at the first write to what the file contained before.
    enum class OldContent {
        removed,
        kept, ///< the file has the size that it will have
    };

    /// Takes ownership of a descriptor that is open for reading and writing.
    OutputFile(int descriptor, std::filesystem::path finalName, OldContent oldContent = OldContent::removed);

    const std::filesystem::path &path() const; ///< the final name
    int descriptor() const;

    // These throw MediaError, which names the output and the system's reason.
    void writeAt(std::uint64_t position, std::span<const std::uint8_t> bytes) const;
    /// Reads earlier written bytes into the buffer. Returns their number, which is smaller only at the end of the file.
    std::size_t readAt(std::uint64_t position, std::span<std::uint8_t> buffer) const;
    std::uint64_t size() const;
    /// Cuts the file off after this size.
    void truncate(std::uint64_t size) const;

private:
    void emptyOnce() const;

    struct Opened;
    std::shared_ptr<const Opened> opened_;
};

} // namespace lumetwin::media
