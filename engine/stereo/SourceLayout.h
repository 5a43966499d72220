// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/EyePair.h"
#include "media/PixelAspect.h"
#include "media/Placement.h"
#include "model/InputLayout.h"
#include "model/MediaFacts.h"
#include "model/StereoLayout.h"
#include "model/Warning.h"

#include <cstdint>
#include <vector>

namespace lumetwin {

/// The layout in which an input of the direction to spatial media is read: as the user says; otherwise as the tags of
/// the file say; otherwise side by side with the full width. A guess (from a name or a picture) is never used. When the
/// user names the arrangement that the file has, the order of the eyes is still the file's.
StereoLayout sourceLayout(InputLayout chosen, const MediaFacts &facts);

/// Throws ProcessorError when no decoder reads both eyes of this layout.
void requireReadable(const StereoLayout &layout);

/// Warnings and notes about the layout that is used, and about the projection.
std::vector<Warning> layoutWarnings(const StereoLayout &used, const MediaFacts &facts);

/// Where the eyes are in a source picture, in pixels, and the size in which one is shown. When each eye has a picture
/// of its own, both are the whole picture.
struct EyeCells : media::EyePair<media::Rect> {
    std::int64_t shownWidth = 0;
    std::int64_t shownHeight = 0;
};

/// The cells of a picture of that size. An odd last column (over-under: row) belongs to no eye.
EyeCells eyeCells(const StereoLayout &layout, std::int64_t sourceWidth, std::int64_t sourceHeight);

/// Whether both eyes are in one picture.
bool isInOnePicture(const StereoLayout &layout);

/// The pixel aspect ratio of an eye that was brought to its shown size, in a source with this ratio.
media::PixelAspect eyePixelAspect(const StereoLayout &layout, const media::PixelAspect &source);

} // namespace lumetwin
