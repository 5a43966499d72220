// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/jpeg/JpegHeaders.h"

#include "media/bmff/BigEndian.h"
#include "media/jpeg/JpegSegments.h"
#include "media/jpeg/StereoSegments.h"

#include <algorithm>
#include <span>
#include <string_view>

namespace lumetwin::media::images {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view exifMark = "Exif\0\0"sv;
constexpr std::string_view xmpMark = "http://ns.adobe.com/xap/1.0/\0"sv;

void takeMetadata(std::string_view content, StillHeaders &headers) {
    if (content.starts_with(exifMark) && headers.exif.empty())
        headers.exif.assign(content.begin() + exifMark.size(), content.end());
    else if (content.starts_with(xmpMark) && headers.xmp.empty())
        headers.xmp = content.substr(xmpMark.size());
}

/// Precision, height and width (ITU-T T.81, B.2.2).
void takeSize(std::span<const std::uint8_t> frame, StillHeaders &headers) {
    if (frame.size() < 5)
        return;
    headers.height = static_cast<int>(bmff::bigEndian(frame.subspan(1, 2)));
    headers.width = static_cast<int>(bmff::bigEndian(frame.subspan(3, 2)));
}

} // namespace

StillHeaders readJpegHeaders(const bmff::Source &source) {
    StillHeaders headers;
    std::optional<StereoPacking> jps;
    visitSegments(source, 0, [&](const JpegSegment &segment) {
        const bool wanted = segment.marker == application1 || segment.marker == application3;
        if (!wanted && !isFrameHeader(segment.marker))
            return;
        const std::vector<std::uint8_t> content = contentOf(source, segment);
        if (isFrameHeader(segment.marker)) {
            takeSize(content, headers);
        } else if (segment.marker == application1) {
            takeMetadata({reinterpret_cast<const char *>(content.data()), content.size()}, headers);
        } else {
            const StimFacts stim = stimFacts(content);
            jps = jps ? jps : jpsPacking(content);
            headers.packing = headers.packing ? headers.packing : stim.packing;
            headers.baseline = headers.baseline ? headers.baseline : stim.baseline;
        }
    });
    headers.packing = jps ? jps : headers.packing;
    return headers;
}

} // namespace lumetwin::media::images
