// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionInput.h"
#include "engine/preview/StereoPreview.h"
#include "media/Picture.h"
#include "media/Placement.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace lumetwin {

/// A picture that was read, and which part of it is an eye.
struct SourceEye {
    media::Picture picture;
    media::Rect part;                     ///< in pixels of the picture; may reach beyond it
    std::vector<std::uint8_t> iccProfile; ///< empty: the picture's tags apply
};

/// The eyes of a file before they are reduced, and what is known of them: all but the size of the pictures.
struct PreviewSource {
    PreviewFacts facts;
    SourceEye left;
    std::optional<SourceEye> right;
};

// Read what a preview shows of a photo, or of a film. Throw MediaError, and ProcessorError where the eyes differ in
// size.

PreviewSource photoSource(const ConversionInput &input, const PreviewRequest &request);
PreviewSource filmSource(const ConversionInput &input, const PreviewRequest &request);

/// The whole picture.
media::Rect wholeOf(const media::Picture &picture);

} // namespace lumetwin
