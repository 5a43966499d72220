// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Cancellation.h"
#include "media/LightLevels.h"
#include "media/Picture.h"

#include <memory>

namespace lumetwin::media {

/// Whether these are colours of high dynamic range: PQ or HLG (ITU-R BT.2100).
bool isHighDynamicRange(const ColourTags &colour);

/// Converts pictures of high dynamic range to what screens of standard range show: 203 cd/m² (the reference white of
/// ITU-R BT.2408) becomes white; what is brighter is compressed by the curve of ITU-R BT.2390 (5.4.1), for the
/// brightest of red, green and blue; colours outside BT.709 are moved toward grey, softly. HLG is shown as on a screen
/// of 1000 cd/m². Samples are dithered. The chroma samples stay where they are. May be used on any thread.
class StandardRange {
public:
    /// What the light levels do not say is taken as 1000 cd/m². `target` is one of the two below.
    StandardRange(const ColourTags &source, const LightLevels &levels, const ColourTags &target);

    /// BT.709, limited range, for a screen with the curve of ITU-R BT.1886.
    static ColourTags video(const ColourTags &source);
    /// sRGB as YCbCr with BT.601's matrix and full range, as in JPEG.
    static ColourTags photo(const ColourTags &source);

    /// picture: YCbCr of more than 8 bits and the source's colours. result: the same size and subsampling, 8 bits.
    void convert(const Picture &picture, Picture &result) const;

    /// A photo's picture, of any depth, for formats of standard range: 8-bit YCbCr with the colours of photo(). Grey
    /// pictures and those of standard range stay as they are. Throws like convertColour().
    static Picture ofPhoto(Picture picture, const Cancellation &cancellation = {});

private:
    struct Table;
    std::shared_ptr<const Table> table_;
};

} // namespace lumetwin::media
