// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/PhotoExtras.h"
#include "media/StereoPacking.h"

#include <optional>
#include <string>
#include <string_view>

namespace lumetwin::media::images {

/// An XMP packet (ISO 16684-1) that says of the picture what is true: upright, of this size, without thumbnails and
/// without the extension that a JPEG file may keep elsewhere. A packet that needs no change stays as it is. In another
/// one, all else stays byte for byte, but for a byte order mark at its beginning, white space within tags, the quotes
/// around attributes (which become double ones), and elements without content (which become one tag).
/// Empty where the packet is no well-formed XML in UTF-8, has a document type declaration (which may define entities),
/// is nested too deep or is too long.
std::string correctedXmp(std::string packet, int width, int height);

/// What an XMP packet says of a photo's extras; none where the packet is refused as above.
PhotoExtras xmpExtras(std::string_view packet);

/// What an XMP packet says of a panorama: GPano of photos, or GSpherical of films. Nothing where it is refused as
/// above.
struct Panorama {
    std::string projection; ///< as in PhotoPackings
    std::optional<StereoPacking> packing;
};

Panorama xmpPanorama(std::string_view packet);

} // namespace lumetwin::media::images
