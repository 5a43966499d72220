// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/jpeg/JpegExtras.h"

#include "media/jpeg/JpegSegments.h"
#include "media/jpeg/MultiPicture.h"
#include "media/metadata/Xmp.h"

#include <span>
#include <string_view>
#include <utility>

namespace lumetwin::media::images {

namespace {

using namespace std::string_view_literals;
using Bytes = std::vector<std::uint8_t>;

constexpr std::string_view xmpMark = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr std::string_view gainMapMark = "urn:iso:std:iso:ts:21496:-1\0"sv; // ISO 21496-1, annex C
constexpr std::string_view extendedXmpMark = "http://ns.adobe.com/xmp/extension/\0"sv;

constexpr std::size_t mostImages = 16;

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
    void image(std::uint64_t place) {
        visitSegments(source_, place, [this](const JpegSegment &segment) {
            if (segment.marker == application1 || segment.marker == application2)
                look(segment);
        });
    }

    void look(const JpegSegment &segment) {
        const Bytes bytes = contentOf(source_, segment);
        const std::string_view text = textOf(bytes);
        const bool first = segment.marker == application1;
        if (first && text.starts_with(xmpMark))
            extras_ = extras_ | xmpExtras(text.substr(xmpMark.size()));
        else if (first && text.starts_with(extendedXmpMark))
            extras_ = extras_ | extrasOfPiece(text);
        else if (!first && text.starts_with(gainMapMark))
            extras_.gainMap = true;
        else if (!first && text.starts_with(multiPictureMark) && further_.empty())
            noteFurther(std::span(bytes).subspan(multiPictureMark.size()), segment.place + multiPictureMark.size());
    }

    void noteFurther(std::span<const std::uint8_t> index, std::uint64_t header) {
        for (const IndexedPicture &picture : pictureIndex(index, header))
            if (picture.place != 0 && further_.size() < mostImages)
                further_.push_back(picture.place);
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
