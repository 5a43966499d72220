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

/// Converts a spatial video into a side-by-side video. Returns when the file is written, or when the user cancelled.
/// Throws ProcessorError or MediaError.
Outcome convertSpatialVideoToSBS(const ConversionSettings &settings, const ConversionInput &input,
                                 const media::OutputFile &output, const ConversionControl &control,
                                 SystemVersion system = SystemVersion::current());

} // namespace lumetwin
