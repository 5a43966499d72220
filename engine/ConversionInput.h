// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/InputFile.h"

#include <optional>
#include <utility>

namespace lumetwin {

/// What a conversion reads: a file; and where each eye has a file of its own, also the file of the right eye.
struct ConversionInput : media::InputFile {
    std::optional<media::InputFile> rightEye;
    /// Replaces the disparity adjustment of the settings: percent of the width, chosen from the picture.
    std::optional<double> disparityAdjustment;

    ConversionInput(media::InputFile file, std::optional<media::InputFile> theRightEye = {}) // NOLINT: a file is one
        : media::InputFile(std::move(file)), rightEye(std::move(theRightEye)) {}
};

} // namespace lumetwin
