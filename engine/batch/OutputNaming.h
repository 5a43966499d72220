// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"

#include <filesystem>
#include <string>

namespace lumetwin {

/// The file name of an input's output: the input's name without its last extension, "_sbs" or "_spatial",
/// and the extension that the direction and format ask for. trip.MOV becomes trip_sbs.mp4.
std::string outputName(const std::filesystem::path &input, const ConversionSettings &settings);

} // namespace lumetwin
