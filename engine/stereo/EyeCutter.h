// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/stereo/EyeExtraction.h"
#include "media/Compositor.h"
#include "media/Picture.h"

namespace lumetwin {

/// Cuts the 4:2:0 pictures of the two eyes out of the frames of a video. For one thread.
class EyeCutter {
public:
    /// depth: bits per sample of the eyes.
    EyeCutter(const EyeExtraction &extraction, const EyeSize &eye, const media::ColourTags &colour, int depth = 8);

    media::Picture left(const media::Picture &frame) { return cut(frame, extraction_.left); }
    media::Picture right(const media::Picture &frame) { return cut(frame, extraction_.right); }

private:
    bool isPartOf(const media::Picture &frame, const media::Placement &placement) const;
    media::Picture cut(const media::Picture &frame, const media::Placement &placement);

    EyeExtraction extraction_;
    media::PictureFormat format_;
    media::ColourTags colour_;
    media::PicturePool pool_;
    media::Compositor compositor_;
};

} // namespace lumetwin
