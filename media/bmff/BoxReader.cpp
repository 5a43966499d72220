// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/bmff/BoxReader.h"

#include "media/bmff/BigEndian.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace lumetwin::media::bmff {

namespace {

class FileSource : public Source {
public:
    explicit FileSource(InputFile file) : file_(std::move(file)), size_(file_.size()) {}

    std::uint64_t size() const override { return size_; }

    void read(std::uint64_t position, std::span<std::uint8_t> buffer) const override {
        if (position > size_ || buffer.size() > size_ - position)
            throw FormatError("the file ends early", MediaReason::endsEarly);
        if (buffer.size() > ahead_.size())
            return fill(position, buffer);
        // Headers are close together. Reading each with its own system call would take most of the time.
        if (position < aheadBegin_ || position + buffer.size() > aheadEnd_) {
            aheadEnd_ = 0;
            const auto count = std::min<std::uint64_t>(ahead_.size(), size_ - position);
            fill(position, std::span(ahead_).first(static_cast<std::size_t>(count)));
            aheadBegin_ = position;
            aheadEnd_ = position + count;
        }
        std::copy_n(ahead_.begin() + static_cast<std::ptrdiff_t>(position - aheadBegin_), buffer.size(),
                    buffer.begin());
    }

private:
    void fill(std::uint64_t position, std::span<std::uint8_t> buffer) const {
        if (file_.readAt(position, buffer) < buffer.size())
            throw FormatError("the file ends early", MediaReason::endsEarly);
    }

    InputFile file_;
    std::uint64_t size_;
    mutable std::array<std::uint8_t, 4096> ahead_{};
    mutable std::uint64_t aheadBegin_ = 0;
    mutable std::uint64_t aheadEnd_ = 0;
};

class MemorySource : public Source {
public:
    explicit MemorySource(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
    std::uint64_t size() const override { return bytes_.size(); }
    void read(std::uint64_t position, std::span<std::uint8_t> buffer) const override {
        if (position > bytes_.size() || buffer.size() > bytes_.size() - position)
            throw FormatError("the data ends early");
        if (!buffer.empty())
            std::memcpy(buffer.data(), bytes_.data() + position, buffer.size());
    }

private:
    std::span<const std::uint8_t> bytes_;
};

constexpr std::uint64_t headerSize = 8;

} // namespace

std::unique_ptr<Source> openFile(const InputFile &file) {
    return std::make_unique<FileSource>(file);
}

std::unique_ptr<Source> fromMemory(std::span<const std::uint8_t> bytes) {
    return std::make_unique<MemorySource>(bytes);
}

bool BoxWalk::next(Box &box) {
    if (end_ > source_->size())
        throw FormatError("a box reaches beyond the file", MediaReason::endsEarly);
    if (end_ - position_ < headerSize)
        return false;
    if (++*count_ > limit)
        throw FormatError("too many boxes");
    std::array<std::uint8_t, 32> head{};
    const auto available = static_cast<std::size_t>(std::min<std::uint64_t>(head.size(), end_ - position_));
    source_->read(position_, std::span(head).first(available));
    Fields fields(std::span<const std::uint8_t>(head).first(available));
    std::uint64_t size = fields.u32();
    box.type = fields.u32();
    if (size == 0 && box.type == 0)
        return false; // a terminator ends the list
    if (size == 1)
        size = fields.u64();
    else if (size == 0)
        size = end_ - position_; // size 0: until the end
    if (box.type == fourCC("uuid"))
        std::ranges::copy(fields.bytes(16), box.uuid.begin());
    if (size < fields.position() || size > end_ - position_)
        throw FormatError("a box's size is wrong");
    box.begin = position_ + fields.position();
    box.end = position_ + size;
    position_ = box.end;
    return true;
}

std::uint64_t Fields::number(std::size_t size) {
    return bigEndian(bytes(size));
}

std::span<const std::uint8_t> Fields::bytes(std::size_t size) {
    if (size > left())
        throw FormatError("a box ends early");
    const auto part = bytes_.subspan(position_, size);
    position_ += size;
    return part;
}

std::vector<std::uint8_t> payload(const Source &source, const Box &box, std::uint64_t limit) {
    if (box.payloadSize() > limit)
        throw FormatError("a box is too large");
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(box.payloadSize()));
    source.read(box.begin, bytes);
    return bytes;
}

} // namespace lumetwin::media::bmff
