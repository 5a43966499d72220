// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/jpeg/JpegSegments.h"

#include "media/bmff/BigEndian.h"

#include <array>

namespace lumetwin::media::images {

namespace {

constexpr std::uint8_t startOfImage = 0xD8;
constexpr std::uint8_t endOfImage = 0xD9;
constexpr std::uint8_t startOfScan = 0xDA;
constexpr std::uint8_t fillByte = 0xFF;
constexpr int mostSegments = 2000; ///< of one image, with fill bytes between them

template <std::size_t size> std::array<std::uint8_t, size> read(const bmff::Source &source, std::uint64_t place) {
    std::array<std::uint8_t, size> bytes{};
    source.read(place, bytes);
    return bytes;
}

/// The code of the marker at a position; 0 when there is none.
std::uint8_t markerAt(const bmff::Source &source, std::uint64_t place) {
    const auto bytes = read<2>(source, place);
    return bytes[0] == 0xFF ? bytes[1] : std::uint8_t{0};
}

} // namespace

bool visitSegments(const bmff::Source &source, std::uint64_t place,
                   const std::function<void(const JpegSegment &)> &take) {
    bool begins = false;
    try {
        begins = markerAt(source, place) == startOfImage;
        place += 2;
        for (int count = 0; begins && count < mostSegments; ++count) {
            const std::uint8_t marker = markerAt(source, place);
            if (marker == fillByte) {
                ++place;
                continue;
            }
            if (marker == startOfScan || marker == endOfImage || marker == 0)
                break;
            const std::uint64_t length = bmff::bigEndian(read<2>(source, place + 2));
            if (length < 2)
                break;
            take({marker, place + 4, static_cast<std::size_t>(length - 2)});
            place += 2 + length;
        }
    } catch (const bmff::FormatError &) {
        return begins; // the file ends
    }
    return begins;
}

std::vector<std::uint8_t> contentOf(const bmff::Source &source, const JpegSegment &segment) {
    std::vector<std::uint8_t> bytes(segment.size);
    source.read(segment.place, bytes);
    return bytes;
}

} // namespace lumetwin::media::images
