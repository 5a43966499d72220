// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/InputFile.h"
#include "media/MediaError.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumetwin::media::bmff {

/// The file violates ISO/IEC 14496-12 or exceeds the reader's limits. Not thrown outside of media/.
class FormatError : public std::runtime_error {
public:
    explicit FormatError(const std::string &details, MediaReason reason = MediaReason::damaged)
        : std::runtime_error(details), reason_(reason), details_(details) {}
    explicit FormatError(MediaReason reason) : std::runtime_error(std::string(words(reason))), reason_(reason) {}

    MediaReason reason() const { return reason_; }
    const std::string &details() const { return details_; }

private:
    MediaReason reason_;
    std::string details_;
};

/// A four-character code as the number stored in files.
constexpr std::uint32_t fourCC(const char (&name)[5]) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(name[0])) << 24 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(name[1])) << 16 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(name[2])) << 8 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(name[3]));
}

/// Random access to the bytes of a file or of memory.
class Source {
public:
    virtual ~Source() = default;
    virtual std::uint64_t size() const = 0;
    /// Reads the buffer from the position. Throws FormatError when the source ends earlier.
    virtual void read(std::uint64_t position, std::span<std::uint8_t> buffer) const = 0;
};

/// Reads that fail throw MediaError.
std::unique_ptr<Source> openFile(const InputFile &file);
/// The bytes must outlive the source.
std::unique_ptr<Source> fromMemory(std::span<const std::uint8_t> bytes);

/// The type and position of a box.
struct Box {
    std::uint32_t type = 0;
    std::array<std::uint8_t, 16> uuid{}; ///< only for boxes of type `uuid`
    std::uint64_t begin = 0;             ///< of the payload, after the header
    std::uint64_t end = 0;

    std::uint64_t payloadSize() const { return end - begin; }
};

/// Iterates over the boxes in [begin, end) of a source. A counter shared by all iterations of one file limits the work
/// that a file can cause.
class BoxWalk {
public:
    /// The maximum number of boxes read from one file.
    static constexpr int limit = 200'000;

    BoxWalk(const Source &source, std::uint64_t begin, std::uint64_t end, int &count)
        : source_(&source), position_(begin), end_(end), count_(&count) {}

    /// Reads the next box; returns false at the end. Up to seven remaining bytes, or a 32-bit zero, count as the end
    /// (QuickTime terminators). Throws FormatError for a box size below that of its header or beyond the end, and above
    /// the limit.
    bool next(Box &box);

private:
    const Source *source_;
    std::uint64_t position_;
    std::uint64_t end_;
    int *count_;
};

/// Reads big-endian fields of a payload. Throws FormatError beyond its end.
class Fields {
public:
    explicit Fields(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    std::uint8_t u8() { return static_cast<std::uint8_t>(number(1)); }
    std::uint16_t u16() { return static_cast<std::uint16_t>(number(2)); }
    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }
    std::uint64_t u64() { return number(8); }
    std::int32_t i32() { return static_cast<std::int32_t>(u32()); }
    /// An unsigned number with 0 to 8 bytes.
    std::uint64_t number(std::size_t size);
    std::span<const std::uint8_t> bytes(std::size_t size);
    void skip(std::size_t size) { bytes(size); }
    std::size_t left() const { return bytes_.size() - position_; }
    std::size_t position() const { return position_; }

private:
    std::span<const std::uint8_t> bytes_;
    std::size_t position_ = 0;
};

/// The beginning of the payload of a full box.
struct FullBoxHead {
    explicit FullBoxHead(Fields &fields) : version(fields.u8()), flags(static_cast<std::uint32_t>(fields.number(3))) {}
    std::uint8_t version;
    std::uint32_t flags;
};

/// Reads a box's payload. Throws FormatError when it is larger than the limit.
std::vector<std::uint8_t> payload(const Source &source, const Box &box, std::uint64_t limit);

} // namespace lumetwin::media::bmff
