// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/jpeg/JpegExtras.h"

#include "media/bmff/BigEndian.h"
#include "media/metadata/ExifBytes.h"
#include "media/metadata/Xmp.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace lumetwin::media::images {

namespace {

using namespace std::string_view_literals;
using Bytes = std::vector<std::uint8_t>;

constexpr std::string_view xmpMark = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr std::string_view gainMapMark = "urn:iso:std:iso:ts:21496:-1\0"sv; // ISO 21496-1, annex C
constexpr std::string_view multiPictureMark = "MPF\0"sv;                    // CIPA DC-007, 5.1
constexpr std::string_view extendedXmpMark = "http://ns.adobe.com/xmp/extension/\0"sv;

constexpr std::uint8_t startOfImage = 0xD8;
constexpr std::uint8_t endOfImage = 0xD9;
constexpr std::uint8_t startOfScan = 0xDA;
constexpr std::uint8_t firstApplication = 0xE1;
constexpr std::uint8_t secondApplication = 0xE2;

constexpr int mostSegments = 2000; ///< of one image
constexpr int mostImages = 16;
constexpr int mostFields = 64; ///< of a multi-picture index

std::string_view textOf(const Bytes &bytes) {
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

PhotoExtras operator|(PhotoExtras one, PhotoExtras other) {
    return {one.gainMap || other.gainMap, one.depthMap || other.depthMap, one.film || other.film};
}

/// A piece of a long packet: no XML of its own, but the first piece declares the namespaces.
PhotoExtras extrasOfPiece(std::string_view piece) {
    return {contains(piece, "http://ns.adobe.com/hdr-gain-map/1.0/") ||
                contains(piece, "http://ns.apple.com/HDRGainMap/1.0/"),
            contains(piece, "http://ns.google.com/photos/1.0/depthmap/") ||
                contains(piece, "http://ns.google.com/photos/dd/1.0/"),
            false};
}

/// The header of a multi-picture index: a TIFF structure with offsets relative to its beginning.
struct IndexReader {
    const Bytes &bytes;
    bool bigEndian = false;

    std::optional<std::uint32_t> number(std::size_t at, std::size_t size) const {
        if (at > bytes.size() || bytes.size() - at < size)
            return std::nullopt;
        return exif::readNumber(bytes.data() + at, size, bigEndian);
    }
};

constexpr std::uint32_t entriesField = 0xB002; // CIPA DC-007, 5.2.3.3
constexpr std::size_t entrySize = 16;

/// The position and size in bytes of the list of images.
struct EntryList {
    std::uint32_t offset = 0;
    std::uint32_t size = 0;
};

std::optional<EntryList> entryList(const IndexReader &index) {
    const auto directory = index.number(4, 4);
    const auto count = directory ? index.number(*directory, 2) : std::nullopt;
    if (!count)
        return std::nullopt;
    for (std::uint32_t field = 0; field < std::min<std::uint32_t>(*count, mostFields); ++field) {
        const std::size_t at = std::size_t{*directory} + 2 + std::size_t{12} * field;
        const auto size = index.number(at + 4, 4);
        const auto offset = index.number(at + 8, 4);
        if (index.number(at, 2) == entriesField && size && offset)
            return EntryList{*offset, *size};
    }
    return std::nullopt;
}

/// The positions of the other images, relative to the index's header.
std::vector<std::uint32_t> furtherImages(const Bytes &bytes) {
    IndexReader index{bytes};
    if (bytes.size() < 8 || (textOf(bytes).substr(0, 2) != "II" && textOf(bytes).substr(0, 2) != "MM"))
        return {};
    index.bigEndian = bytes[0] == 'M';
    const auto list = entryList(index);
    std::vector<std::uint32_t> offsets;
    for (std::size_t entry = 0; list && entry < std::min<std::size_t>(list->size / entrySize, mostImages); ++entry) {
        const auto offset = index.number(std::size_t{list->offset} + entry * entrySize + 8, 4);
        if (offset && *offset > 0)
            offsets.push_back(*offset);
    }
    return offsets;
}

class Walk {
public:
    explicit Walk(const bmff::Source &source) : source_(source) {}

    PhotoExtras run() {
        image(0);
        for (const std::uint64_t place : std::exchange(further_, {}))
            image(place);
        return extras_;
    }

private:
    /// Reads the segments of one image before its samples.
    void image(std::uint64_t place) {
        try {
            if (markerAt(place) != startOfImage)
                return;
            place += 2;
            for (int count = 0; count < mostSegments; ++count) {
                const std::uint8_t marker = markerAt(place);
                if (marker == startOfScan || marker == endOfImage || marker == 0)
                    return;
                const std::uint64_t length = bmff::bigEndian(read<2>(place + 2));
                if (length < 2)
                    return;
                segment(marker, place + 4, static_cast<std::size_t>(length - 2));
                place += 2 + length;
            }
        } catch (const bmff::FormatError &) {
            return; // the file ends
        }
    }

    void segment(std::uint8_t marker, std::uint64_t place, std::size_t size) {
        if (marker != firstApplication && marker != secondApplication)
            return;
        Bytes bytes(size);
        source_.read(place, bytes);
        const std::string_view text = textOf(bytes);
        if (marker == firstApplication && text.starts_with(xmpMark))
            extras_ = extras_ | xmpExtras(text.substr(xmpMark.size()));
        else if (marker == firstApplication && text.starts_with(extendedXmpMark))
            extras_ = extras_ | extrasOfPiece(text);
        else if (marker == secondApplication && text.starts_with(gainMapMark))
            extras_.gainMap = true;
        else if (marker == secondApplication && text.starts_with(multiPictureMark))
            noteFurther(place + multiPictureMark.size(), {bytes.begin() + multiPictureMark.size(), bytes.end()});
    }

    void noteFurther(std::uint64_t header, const Bytes &index) {
        if (further_.empty())
            for (const std::uint32_t offset : furtherImages(index))
                further_.push_back(header + offset);
    }

    /// The code of the marker at a position; 0 when there is none.
    std::uint8_t markerAt(std::uint64_t place) const {
        const std::array<std::uint8_t, 2> bytes = read<2>(place);
        return bytes[0] == 0xFF ? bytes[1] : std::uint8_t{0};
    }

    template <std::size_t size> std::array<std::uint8_t, size> read(std::uint64_t place) const {
        std::array<std::uint8_t, size> bytes{};
        source_.read(place, bytes);
        return bytes;
    }

    const bmff::Source &source_;
    PhotoExtras extras_;
    std::vector<std::uint64_t> further_; ///< their positions
};

} // namespace

PhotoExtras jpegExtras(const bmff::Source &source) {
    return Walk(source).run();
}

} // namespace lumetwin::media::images
