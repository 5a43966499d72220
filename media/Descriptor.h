// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <utility>

namespace lumetwin::media {

/// The owner of a file descriptor.
class Descriptor {
public:
    explicit Descriptor(int descriptor = -1) : descriptor_(descriptor) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor &&other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept {
        if (this != &other) {
            close();
            descriptor_ = std::exchange(other.descriptor_, -1);
        }
        return *this;
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int get() const { return descriptor_; }
    explicit operator bool() const { return descriptor_ >= 0; }
    int release() { return std::exchange(descriptor_, -1); }

private:
    void close() noexcept;

    int descriptor_;
};

/// Reads the buffer from the position. Returns the number of bytes, which is smaller only at the end of the file.
/// Throws MediaError, which names `file`.
std::size_t readFrom(int descriptor, std::uint64_t position, std::span<std::uint8_t> buffer,
                     const std::filesystem::path &file);

} // namespace lumetwin::media
