// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/SystemVersion.h"

#include <filesystem>
#include <optional>

namespace lumetwin {

/// Stereo values in the form's units; absent where the file does not carry them.
struct StereoValues {
    std::optional<double> horizontalFOV;  ///< degrees
    std::optional<double> stereoBaseline; ///< millimetres
    std::optional<double> disparity;      ///< percent of the image width
};

/// Whether a photo holds a stereo pair. Never throws: what cannot be read is not spatial.
bool isSpatialPhoto(const std::filesystem::path &file) noexcept;

/// Whether a movie's first video track announces a stereo camera baseline. Never throws.
bool isSpatialVideo(const std::filesystem::path &file, SystemVersion system = SystemVersion::current()) noexcept;

StereoValues photoStereoValues(const std::filesystem::path &file) noexcept;
StereoValues videoStereoValues(const std::filesystem::path &file,
                               SystemVersion system = SystemVersion::current()) noexcept;

} // namespace lumetwin
