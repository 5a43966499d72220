// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/preview/StereoPreview.h"
#include "model/ConversionSettings.h"
#include "model/StereoFindings.h"

namespace lumetwin {

// How the two eyes of a preview are shown in one picture. Without a right eye, these show the left one alone. Where the
// eyes differ in size, only the part that both have is combined.

PreviewPicture besideEachOther(const PreviewPicture &left, const PreviewPicture &right);

/// For red and cyan glasses, the red one on the left eye: the least-squares projection of E. Dubois (ICASSP 2001, "A
/// projection method to generate anaglyph stereo images") with his matrices of March 2009 ("Conversion of a Stereo Pair
/// to Anaglyph with the Least-Squares Projection Method"), in linear light.
PreviewPicture anaglyph(const PreviewPicture &left, const PreviewPicture &right);

/// The difference of the samples, without sign: equal eyes are black. Without a right eye, black.
PreviewPicture difference(const PreviewPicture &left, const PreviewPicture &right);

/// What a conversion with these settings writes, reduced to fit into the size: the frame in the direction to side by
/// side, or the two eyes beside each other in the direction to spatial media. Without a right eye, the left one is used
/// twice, as of a frame with one view. Empty when no conversion writes such a size.
PreviewPicture asWritten(const ConversionSettings &settings, const PreviewFacts &facts, const PreviewPicture &left,
                         const PreviewPicture &right, int maximumWidth, int maximumHeight);

/// What the two eyes look like: a look at one picture, as examine() does for files. Not examined without both eyes.
StereoFindings findingsOf(const PreviewPicture &left, const PreviewPicture &right);

} // namespace lumetwin
