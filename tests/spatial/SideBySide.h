// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/SBSVideoToSpatial.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace lumetwin::test {

// Luma of the two halves of a drawn side-by-side frame, and of the mark in the upper left corner of each half.
inline constexpr int leftLuma = 60;
inline constexpr int rightLuma = 150;
inline constexpr int markLuma = 220;

/// A side-by-side clip to be drawn.
struct Clip {
    int width = 384; ///< of the whole frame
    int height = 96;
    int frames = 3;
    std::string rate = "30";
    std::string format = "yuv420p";
    std::string filter; ///< more filters, after the drawing
    std::vector<std::string> video{"-c:v", "libx264", "-qp", "6"};
    std::string sound; ///< an audio source of the drawing program, such as "sine=d=1"; none while empty
    std::vector<std::string> audio{"-c:a", "aac"};
};

/// Draws the clip: grey halves of their own luma, each with a bright mark; an odd last column is white.
std::filesystem::path draw(const std::filesystem::path &file, const Clip &clip = {});

struct Conversion {
    std::vector<std::pair<std::int64_t, std::int64_t>> progress;
    std::vector<std::string> warnings;
};

/// Converts and keeps what was reported.
Conversion convert(const ConversionSettings &settings, const std::filesystem::path &input,
                   const std::filesystem::path &output, SystemVersion system = SystemVersion::current());

/// Fails the test unless each view has the size and shows its luma and its mark in every frame.
void expectViews(const std::filesystem::path &movie, int width, int height, int left = leftLuma, int right = rightLuma);

} // namespace lumetwin::test
