// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace lumetwin {

/// How the inputs of the direction to spatial media have their eyes, as the user says.
enum class InputLayout {
    automatic, ///< as the file says; otherwise side by side, full width
    sideBySide,
    halfSideBySide,
    overUnder,
    halfOverUnder,
    twoPictures, ///< of one photo file
    twoStreams,  ///< of one video file
    twoFiles,    ///< two files whose names differ by their eye
};

inline constexpr std::array allInputLayouts{
    InputLayout::automatic,     InputLayout::sideBySide,  InputLayout::halfSideBySide, InputLayout::overUnder,
    InputLayout::halfOverUnder, InputLayout::twoPictures, InputLayout::twoStreams,     InputLayout::twoFiles};

/// Where the stereo values of a spatial file come from.
enum class StereoValuesSource {
    settings,
    file, ///< from the input, where it has them and the setting has its default
};

inline constexpr std::array allStereoValuesSources{StereoValuesSource::settings, StereoValuesSource::file};

} // namespace lumetwin
