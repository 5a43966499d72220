// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"

#include <filesystem>
#include <string>

namespace lumetwin {

/// The file name of the output: the input's name without its last extension, then "_sbs" or "_spatial", then the
/// extension for the direction and format. trip.MOV becomes trip_sbs.mp4.
std::string outputName(const std::filesystem::path &input, const ConversionSettings &settings);

} // namespace lumetwin
