// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/EyePair.h"
#include "media/FrameReader.h"

#include <optional>

namespace lumetwin {

/// The pictures of the two eyes of a spatial film's frame.
struct FrameEyes : media::EyePair<media::Picture> {
    bool hasBoth = false; ///< false: the frame has one view, which is used for both eyes
};

/// The eyes of a frame, found by their stereo tags. nullopt for a frame without pictures.
std::optional<FrameEyes> eyesOf(const media::Frame &frame);

} // namespace lumetwin
