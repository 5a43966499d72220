// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/hevc/NalUnits.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumetwin::media::hevc {

/// Reads the bits of a NAL unit from its header, without the emulation prevention bytes (ITU-T H.265, 7.3.1.1). Beyond
/// the end it returns zeros, and good() returns false.
class BitReader {
public:
    explicit BitReader(NalBytes unit);

    std::uint32_t bits(int count); ///< u(count), count at most 32
    std::uint32_t number();        ///< ue(v), 9.2

    /// Reads bits and returns whether they have the given value.
    bool expect(int count, std::uint32_t value) { return bits(count) == value; }
    bool expectNumber(std::uint32_t value) { return number() == value; }
    void skip(int count) { moveTo(position_ + static_cast<std::size_t>(count)); }
    void align() { moveTo((position_ + 7) / 8 * 8); }

    std::size_t position() const { return position_; }     ///< bits
    std::size_t size() const { return bytes_.size() * 8; } ///< bits
    /// Whether nothing was read beyond the end.
    bool good() const { return !beyond_; }

private:
    std::uint32_t bit();
    void moveTo(std::size_t position);

    std::vector<std::uint8_t> bytes_;
    std::size_t position_ = 0;
    bool beyond_ = false;
};

} // namespace lumetwin::media::hevc
