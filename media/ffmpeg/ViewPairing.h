// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/FrameReader.h"
#include "media/ffmpeg/MovieFileState.h"
#include "media/ffmpeg/Pictures.h"

#include <cstdint>
#include <optional>

namespace lumetwin::media::ffmpeg {

/// Joins the two views of one time, which a decoder hands out one after the other, to one frame.
class ViewPairing {
public:
    /// `cropping` is what every picture loses; `bothViews` says that two views are decoded.
    ViewPairing(Cropping cropping, bool bothViews) : cropping_(cropping), bothViews_(bothViews) {}

    /// Takes what was decoded; the frame before it, where that is complete now.
    std::optional<Frame> take(FramePointer decoded);
    /// The last frame.
    std::optional<Frame> finish();

private:
    Picture cropToAperture(Picture picture) const;

    Cropping cropping_;
    bool bothViews_;
    PictureImporter importer_;
    std::optional<Frame> pending_;
    std::int64_t pendingTime_ = AV_NOPTS_VALUE;
    int pendingView_ = 0;
};

} // namespace lumetwin::media::ffmpeg
