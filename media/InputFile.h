// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

namespace lumetwin::media {

/// A regular file that has been opened for reading, and the name that messages call it by. Everything that reads the
/// file reads through this one descriptor, each reader at its own position. A value: copies share the descriptor, which
/// is closed with the last of them. Any thread may read.
class InputFile {
public:
    /// Throws MediaError where there is no such file, where it may not be read, and where it is not a regular file.
    explicit InputFile(const std::filesystem::path &file);
    /// Takes over a descriptor that another process has opened.
    InputFile(int descriptor, std::filesystem::path name);

    /// For messages, and for what a name's extension says. Nothing is opened by it.
    const std::filesystem::path &path() const;
    int descriptor() const;
    /// Bytes. Asked of the system each time: a file may grow. Throws MediaError.
    std::uint64_t size() const;
    /// Fills the buffer from the position; returns how many bytes there were, fewer only at the end. Throws MediaError.
    std::size_t readAt(std::uint64_t position, std::span<std::uint8_t> buffer) const;

private:
    struct Opened;
    std::shared_ptr<const Opened> opened_;
};

} // namespace lumetwin::media
