// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace lumetwin::media::hevc {

/// Types of NAL units (ITU-T H.265, table 7-1).
namespace NalType {
inline constexpr int firstRandomAccess = 16; ///< IRAP pictures are 16 to 23, of which 16 to 21 are in use
inline constexpr int lastRandomAccess = 21;
inline constexpr int lastPicture = 31;
inline constexpr int video = 32; ///< parameter sets
inline constexpr int sequence = 33;
inline constexpr int picture = 34;
inline constexpr int delimiter = 35;
inline constexpr int endOfSequence = 36;
inline constexpr int endOfBitstream = 37;
inline constexpr int prefixInformation = 39;
inline constexpr int suffixInformation = 40;
} // namespace NalType

inline constexpr std::size_t nalHeaderBytes = 2;

/// A NAL unit that begins with its two-byte header. The functions need at least the header.
using NalBytes = std::span<const std::uint8_t>;

inline int nalType(NalBytes unit) {
    return unit[0] >> 1 & 0x3F;
}
inline int nalLayer(NalBytes unit) {
    return (unit[0] & 1) << 5 | unit[1] >> 3;
}

/// The unit without its start code.
inline NalBytes withoutStartCode(NalBytes bytes) {
    std::size_t zeros = 0;
    while (zeros < bytes.size() && bytes[zeros] == 0)
        ++zeros;
    return zeros < bytes.size() && bytes[zeros] == 1 ? bytes.subspan(zeros + 1) : bytes;
}

inline void appendAnnexB(std::vector<std::uint8_t> &stream, NalBytes unit) {
    stream.insert(stream.end(), {0, 0, 0, 1});
    stream.insert(stream.end(), unit.begin(), unit.end());
}

} // namespace lumetwin::media::hevc
