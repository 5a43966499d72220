// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"
#include "model/StereoFindings.h"
#include "model/Warning.h"

#include <optional>
#include <string>
#include <vector>

namespace lumetwin {

/// What the picture of a file tells before its conversion to spatial media.
struct PictureCheck {
    std::vector<Warning> warnings;
    std::optional<DisparityFigures> disparity;
    std::optional<double> adjustment; ///< the disparity adjustment that was chosen, in percent of the width
    std::string failure;              ///< why the picture could not be examined, in English
};

/// Examines the picture if the settings ask for it: for warnings, or to choose a disparity adjustment. Never throws; a
/// file that cannot be read is the matter of its conversion.
PictureCheck checkPicture(const MediaOperations &operations, const ConversionSettings &settings,
                          const ConversionInput &input);

/// What a dry run says of the layout of a file, as its conversion would. Throws the errors of the conversion.
std::vector<Warning> expectedWarnings(const MediaOperations &operations, const ConversionSettings &settings,
                                      const ConversionInput &input);

} // namespace lumetwin
