// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media {

/// What a photo holds beside its picture and its metadata.
struct PhotoExtras {
    bool gainMap = false;  ///< what makes the picture brighter on HDR screens
    bool depthMap = false; ///< distances, or disparities
    bool film = false;     ///< a short film of the moment

    bool operator==(const PhotoExtras &) const = default;
};

} // namespace lumetwin::media
