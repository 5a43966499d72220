// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionControl.h"
#include "engine/ConversionInput.h"
#include "engine/Outcome.h"
#include "media/InputFile.h"
#include "media/OutputFile.h"
#include "model/ConversionSettings.h"
#include "model/SystemVersion.h"

namespace lumetwin {

/// Converts a spatial photo into a side-by-side image. Throws SpatialPhotoError, ProcessorError
/// or MediaError.
Outcome convertSpatialPhotoToSBS(const ConversionSettings &settings, const ConversionInput &input,
                                 const media::OutputFile &output, const ConversionControl &control,
                                 SystemVersion = SystemVersion::current());

} // namespace lumetwin
