// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

namespace lumetwin::media {

/// A regular file opened for reading, and its name for messages. All readers of the file share this descriptor, each
/// with its own position. Copies share the descriptor, which is closed with the last copy. May be read on any thread.
class InputFile {
public:
    /// Throws MediaError when the file does not exist, cannot be read, or is not a regular file.
    explicit InputFile(const std::filesystem::path &file);
    /// Takes ownership of a descriptor that another process has opened.
    InputFile(int descriptor, std::filesystem::path name);

    /// For messages and for the extension; never used to open the file.
    const std::filesystem::path &path() const;
    int descriptor() const;
    /// The size in bytes. Queried each time, because a file may grow. Throws MediaError.
    std::uint64_t size() const;
    /// Reads the buffer from the position. Returns the number of bytes, which is smaller only at the end of the file.
    /// Throws MediaError.
    std::size_t readAt(std::uint64_t position, std::span<std::uint8_t> buffer) const;

private:
    struct Opened;
    std::shared_ptr<const Opened> opened_;
};

} // namespace lumetwin::media
