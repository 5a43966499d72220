// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

namespace lumetwin::media {

/// An open file that is written, and the name that it will have, for messages. Whoever created it gives it that name
/// (PartialFile). A value: copies share the descriptor, which is closed with the last of them.
class OutputFile {
public:
    /// Takes over a descriptor that is open for reading and writing.
    OutputFile(int descriptor, std::filesystem::path finalName);

    const std::filesystem::path &path() const; ///< the final name
    int descriptor() const;

    // Throw MediaError, which names the output, with the system's words.
    void writeAt(std::uint64_t position, std::span<const std::uint8_t> bytes) const;
    /// Fills the buffer with what was written before; returns how many bytes there were, fewer only at the end.
    std::size_t readAt(std::uint64_t position, std::span<std::uint8_t> buffer) const;
    std::uint64_t size() const;
    /// Cuts off what is behind the size.
    void truncate(std::uint64_t size) const;

private:
    struct Opened;
    std::shared_ptr<const Opened> opened_;
};

} // namespace lumetwin::media
