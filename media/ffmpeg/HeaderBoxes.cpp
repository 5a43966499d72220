// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/HeaderBoxes.h"

#include "media/bmff/BigEndian.h"

#include <cstring>

namespace lumetwin::media::ffmpeg {

std::uint32_t get32(const std::uint8_t *bytes) {
    return static_cast<std::uint32_t>(bmff::bigEndian({bytes, 4}));
}

void put32(std::uint8_t *bytes, std::uint32_t value) {
    bmff::putBigEndian({bytes, 4}, value);
}

std::optional<Range> child(const MovieHeader &header, std::size_t begin, std::size_t end, std::string_view type) {
    while (begin + 8 <= end) {
        const std::size_t size = get32(header.data() + begin);
        if (size < 8 || size > end - begin)
            return std::nullopt;
        if (std::memcmp(header.data() + begin + 4, type.data(), 4) == 0)
            return Range{begin, begin + size};
        begin += size;
    }
    return std::nullopt;
}

std::optional<std::vector<Range>> descend(const MovieHeader &header, const Range &from,
                                          const std::vector<std::string_view> &path) {
    std::vector<Range> boxes{from};
    for (const std::string_view type : path) {
        const auto next = child(header, boxes.back().begin + 8, boxes.back().end, type);
        if (!next)
            return std::nullopt;
        boxes.push_back(*next);
    }
    return boxes;
}

void replace(MovieHeader &header, const std::vector<Range> &enclosing, std::size_t begin, std::size_t end,
             const MovieHeader &bytes) {
    const auto grown = static_cast<std::uint32_t>(bytes.size() - (end - begin));
    put32(header.data(), get32(header.data()) + grown);
    for (const Range &range : enclosing)
        put32(header.data() + range.begin, get32(header.data() + range.begin) + grown);
    const auto at = header.begin() + static_cast<std::ptrdiff_t>(begin);
    header.insert(header.erase(at, at + static_cast<std::ptrdiff_t>(end - begin)), bytes.begin(), bytes.end());
}

std::optional<Range> videoTrack(const MovieHeader &header) {
    std::size_t begin = 8;
    while (const auto track = child(header, begin, header.size(), "trak")) {
        if (descend(header, *track, {"mdia", "minf", "vmhd"}))
            return track;
        begin = track->end;
    }
    return std::nullopt;
}

} // namespace lumetwin::media::ffmpeg
