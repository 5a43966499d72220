// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace lumetwin::media::hevc {

/// Writes the bits of a NAL unit, without emulation prevention bytes.
class BitWriter {
public:
    void bit(std::uint32_t value) {
        if (count_ % 8 == 0)
            bytes_.push_back(0);
        bytes_.back() = static_cast<std::uint8_t>(bytes_.back() | (value & 1u) << (7 - count_ % 8));
        ++count_;
    }

    /// u(count)
    void bits(int count, std::uint32_t value) {
        for (int place = count - 1; place >= 0; --place)
            bit(value >> place);
    }

    /// ue(v)
    void number(std::uint32_t value) {
        const int width = std::bit_width(value + 1);
        bits(width - 1, 0);
        bits(width, value + 1);
    }

    bool aligned() const { return count_ % 8 == 0; }
    std::vector<std::uint8_t> take() { return std::move(bytes_); }

private:
    std::vector<std::uint8_t> bytes_;
    std::size_t count_ = 0;
};

/// The bytes with emulation prevention bytes (ITU-T H.265, 7.3.1.1).
inline std::vector<std::uint8_t> withEmulationPrevention(const std::vector<std::uint8_t> &bytes) {
    std::vector<std::uint8_t> unit;
    int zeros = 0;
    for (const std::uint8_t byte : bytes) {
        if (zeros >= 2 && byte <= 3) {
            unit.push_back(3);
            zeros = 0;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        unit.push_back(byte);
    }
    return unit;
}

} // namespace lumetwin::media::hevc
