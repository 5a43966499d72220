// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/FrameEyes.h"

#include <utility>

namespace lumetwin {

std::optional<FrameEyes> eyesOf(const media::Frame &frame) {
    std::optional<media::Picture> left;
    std::optional<media::Picture> right;
    for (const media::TaggedPicture &tagged : frame.views()) {
        if (tagged.view == media::StereoView::left)
            left = tagged.picture;
        if (tagged.view == media::StereoView::right)
            right = tagged.picture;
    }
    const bool hasBoth = left && right;
    if (!left && frame.count > 0)
        left = frame.pictures[0].picture;
    if (!left)
        return std::nullopt;
    if (!right)
        right = left;
    return FrameEyes{{std::move(*left), std::move(*right)}, hasBoth};
}

} // namespace lumetwin
