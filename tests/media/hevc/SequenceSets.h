// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/media/bmff/BoxBuilder.h"

#include <bit>
#include <cstdint>

namespace lumetwin::test {

/// Writes bits as a NAL unit has them, without emulation prevention.
class BitWriter {
public:
    BitWriter &bits(int count, std::uint32_t value) {
        for (int place = count - 1; place >= 0; --place) {
            if (count_++ % 8 == 0)
                bytes_.push_back(0);
            bytes_.back() = static_cast<std::uint8_t>(bytes_.back() | (value >> place & 1u) << (7 - (count_ - 1) % 8));
        }
        return *this;
    }

    /// ue(v)
    BitWriter &number(std::uint32_t value) {
        const int width = std::bit_width(value + 1);
        return bits(width - 1, 0).bits(width, value + 1);
    }

    const Bytes &bytes() const { return bytes_; }

private:
    Bytes bytes_;
    int count_ = 0;
};

/// What a sequence parameter set begins with; sizes of coding blocks as powers of two.
struct SequenceSet {
    int layer = 0;
    int subLayers = 1;
    int chromaFormat = 1;
    int lumaDepth = 8;
    int chromaDepth = 8;
    int smallestCodingBlock = 3;
};

inline void header(BitWriter &writer, int layer) {
    writer.bits(8, 33 << 1).bits(5, static_cast<std::uint32_t>(layer)).bits(3, 1).bits(4, 0);
}

/// A NAL unit of a sequence parameter set up to its smallest coding block. Every sub-layer has a profile and a level.
inline Bytes sequenceUnit(const SequenceSet &set) {
    constexpr std::uint32_t filler = 0x55;
    BitWriter writer;
    header(writer, set.layer);
    writer.bits(3, static_cast<std::uint32_t>(set.subLayers - 1)).bits(1, 1);
    for (std::uint32_t byte = 1; byte <= 12; ++byte)
        writer.bits(8, byte);
    for (int layer = 1; layer < set.subLayers; ++layer)
        writer.bits(2, 3);
    if (set.subLayers > 1)
        writer.bits(2 * (9 - set.subLayers), 0);
    for (int byte = 0; byte < 12 * (set.subLayers - 1); ++byte)
        writer.bits(8, filler);
    writer.number(0).number(static_cast<std::uint32_t>(set.chromaFormat));
    if (set.chromaFormat == 3)
        writer.bits(1, 0);
    writer.number(1920).number(1088).bits(1, 1).number(0).number(0).number(0).number(4);
    writer.number(static_cast<std::uint32_t>(set.lumaDepth - 8))
        .number(static_cast<std::uint32_t>(set.chromaDepth - 8));
    writer.number(4).bits(1, 1);
    for (int field = 0; field < 3 * set.subLayers; ++field)
        writer.number(2);
    writer.number(static_cast<std::uint32_t>(set.smallestCodingBlock - 3)).bits(1, 1);
    return writer.bytes();
}

/// The form that leaves the format to the video parameter set.
inline Bytes shortSequenceUnit(int layer, int smallestCodingBlock, bool ownFormat = false) {
    BitWriter writer;
    header(writer, layer);
    writer.bits(3, 7).number(1).bits(1, ownFormat);
    if (ownFormat)
        writer.bits(8, 0);
    writer.number(4).number(static_cast<std::uint32_t>(smallestCodingBlock - 3)).bits(1, 1);
    return writer.bytes();
}

} // namespace lumetwin::test
