// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Outcome.h"
#include "engine/video/SBSVideoToSpatial.h"
#include "engine/video/SpatialVideoToSBS.h"
#include "tests/support/Clips.h"
#include "tests/support/TestMedia.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace lumetwin::test {

/// What a conversion reported.
struct Conversion {
    std::vector<std::pair<std::int64_t, std::int64_t>> progress;
    Outcome outcome;
    std::vector<std::string> warnings; ///< of the outcome, in English; without its notes
    std::vector<std::string> notes;
};

Conversion toSpatial(const ConversionSettings &settings, const std::filesystem::path &input,
                     const std::filesystem::path &output, SystemVersion system = SystemVersion::current());
Conversion toSBS(const ConversionSettings &settings, const std::filesystem::path &input,
                 const std::filesystem::path &output, SystemVersion system = SystemVersion::current());

/// Fails the test unless each view of a spatial movie has the size and shows its luma and its mark in every frame.
void expectViews(const std::filesystem::path &movie, int width, int height, int left = leftLuma, int right = rightLuma);

/// Fails the test unless the halves of every frame of a side-by-side movie of that size show their luma, each with its
/// mark.
void expectHalves(const std::filesystem::path &movie, int width, int height, int left = leftLuma,
                  int right = rightLuma);

/// The two halves of a decoded side-by-side frame.
std::array<std::vector<std::uint8_t>, 2> halves(const LumaFrames &frames, std::size_t frame);

} // namespace lumetwin::test
