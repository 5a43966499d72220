// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionControl.h"
#include "engine/Outcome.h"
#include "model/ConversionSettings.h"

#include <filesystem>

namespace lumetwin {

/// Converts a spatial photo into a side-by-side image. Throws SpatialPhotoError, ProcessorError
/// or MediaError.
Outcome convertSpatialPhotoToSBS(const ConversionSettings &settings, const std::filesystem::path &input,
                                 const std::filesystem::path &output, const ConversionControl &control = {});

} // namespace lumetwin
