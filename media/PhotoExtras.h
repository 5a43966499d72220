// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media {

/// The contents of a photo besides its picture and metadata.
struct PhotoExtras {
    bool gainMap = false;  ///< makes the picture brighter on HDR screens
    bool depthMap = false; ///< distances, or disparities
    bool film = false;     ///< a short movie recorded with the photo

    bool operator==(const PhotoExtras &) const = default;
};

} // namespace lumetwin::media
