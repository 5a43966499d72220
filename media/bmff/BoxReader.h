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

/// A file that does not keep to ISO/IEC 14496-12, or asks for more than the reader's limits. Never leaves media/.
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

/// Four characters as the number that files hold.
constexpr std::uint32_t fourCC(const char (&name)[5]) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(name[0])) << 24 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(name[1])) << 16 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(name[2])) << 8 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(name[3]));
}

/// Bytes at positions: a file or memory.
class Source {
public:
    virtual ~Source() = default;
    virtual std::uint64_t size() const = 0;
    /// Fills the buffer from the position. Throws FormatError when the source ends before.
    virtual void read(std::uint64_t position, std::span<std::uint8_t> buffer) const = 0;
};

/// Reads that fail throw MediaError.
std::unique_ptr<Source> openFile(const InputFile &file);
/// The bytes have to outlive the source.
std::unique_ptr<Source> fromMemory(std::span<const std::uint8_t> bytes);

/// One box: where it lies and what it is.
struct Box {
    std::uint32_t type = 0;
    std::array<std::uint8_t, 16> uuid{}; ///< of boxes of type `uuid`
    std::uint64_t begin = 0;             ///< of the payload, after the header
    std::uint64_t end = 0;

    std::uint64_t payloadSize() const { return end - begin; }
};

/// Walks the boxes in [begin, end) of a source. A counter that all walks of one file share bounds the work that a file
/// can cause.
class BoxWalk {
public:
    /// Boxes of one file that are looked at, in all.
    static constexpr int limit = 200'000;

    BoxWalk(const Source &source, std::uint64_t begin, std::uint64_t end, int &count)
        : source_(&source), position_(begin), end_(end), count_(&count) {}

    /// The next box; false at the end. Up to seven bytes, or a 32-bit zero, that end a list are its end (QuickTime
    /// terminators). Throws FormatError for sizes below the header's or beyond the end, and past the limit.
    bool next(Box &box);

private:
    const Source *source_;
    std::uint64_t position_;
    std::uint64_t end_;
    int *count_;
};

/// Reads a payload's fields, big-endian. Throws FormatError past its end.
class Fields {
public:
    explicit Fields(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    std::uint8_t u8() { return static_cast<std::uint8_t>(number(1)); }
    std::uint16_t u16() { return static_cast<std::uint16_t>(number(2)); }
    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }
    std::uint64_t u64() { return number(8); }
    std::int32_t i32() { return static_cast<std::int32_t>(u32()); }
    /// An unsigned number of 0 to 8 bytes.
    std::uint64_t number(std::size_t size);
    std::span<const std::uint8_t> bytes(std::size_t size);
    void skip(std::size_t size) { bytes(size); }
    std::size_t left() const { return bytes_.size() - position_; }
    std::size_t position() const { return position_; }

private:
    std::span<const std::uint8_t> bytes_;
    std::size_t position_ = 0;
};

/// What every full box's payload begins with.
struct FullBoxHead {
    explicit FullBoxHead(Fields &fields) : version(fields.u8()), flags(static_cast<std::uint32_t>(fields.number(3))) {}
    std::uint8_t version;
    std::uint32_t flags;
};

/// A box's payload in memory. Throws FormatError when it is larger than the limit.
std::vector<std::uint8_t> payload(const Source &source, const Box &box, std::uint64_t limit);

} // namespace lumetwin::media::bmff
