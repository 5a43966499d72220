// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media {

enum class ColourRange { unspecified, limited, full };

/// The position of chroma samples relative to luma samples in subsampled formats (ITU-T H.273, 8.7).
enum class ChromaLocation { unspecified, left, centre, topLeft };

/// The meaning of sample values. The numbers are the code points of ITU-T H.273; 2 means unspecified.
struct ColourTags {
    int primaries = 2;
    int transfer = 2;
    int matrix = 2;
    ColourRange range = ColourRange::unspecified;
    ChromaLocation chromaLocation = ChromaLocation::unspecified;

    bool operator==(const ColourTags &) const = default;
};

} // namespace lumetwin::media
