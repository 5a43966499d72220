// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/hevc/BitReader.h"

#include <algorithm>

namespace lumetwin::media::hevc {

BitReader::BitReader(NalBytes unit) {
    bytes_.reserve(unit.size());
    int zeros = 0;
    for (const std::uint8_t byte : unit) {
        if (zeros >= 2 && byte == 3) {
            zeros = 0;
            continue;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        bytes_.push_back(byte);
    }
}

std::uint32_t BitReader::bits(int count) {
    std::uint32_t value = 0;
    for (; count > 0; --count)
        value = value << 1 | bit();
    return value;
}

std::uint32_t BitReader::number() {
    int zeros = 0;
    while (bit() == 0)
        if (++zeros > 31 || beyond_)
            return beyond_ = true, 0;
    return (1u << zeros) - 1 + bits(zeros);
}

std::uint32_t BitReader::bit() {
    if (position_ >= size())
        return beyond_ = true, 0;
    const std::uint32_t value = bytes_[position_ / 8] >> (7 - position_ % 8) & 1u;
    ++position_;
    return value;
}

void BitReader::moveTo(std::size_t position) {
    beyond_ = beyond_ || position > size();
    position_ = std::min(position, size());
}

} // namespace lumetwin::media::hevc
