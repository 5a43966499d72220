// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionControl.h"
#include "engine/Outcome.h"
#include "model/ConversionSettings.h"

#include <filesystem>

namespace lumetwin {

/// Converts a side-by-side image into a spatial photo; the output's extension becomes "heic". Throws SpatialPhotoError,
/// ProcessorError or MediaError.
Outcome convertSBSImageToSpatial(const ConversionSettings &settings, const std::filesystem::path &input,
                                 const std::filesystem::path &output, const ConversionControl &control = {});

} // namespace lumetwin
