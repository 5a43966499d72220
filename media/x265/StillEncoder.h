// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Cancellation.h"
#include "media/Picture.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace lumetwin::media::x265 {

/// One picture coded as an HEVC Main Still Picture. Eight bits also for deeper sources: the spatial photos that phones
/// and headsets write are all of this profile, so it is what their viewers are made for.
struct CodedStill {
    int width = 0; ///< decoded size: the picture's size rounded up to even
    int height = 0;
    std::vector<std::vector<std::uint8_t>> parameterSets; ///< NAL units: video, sequence, picture parameter set
    std::vector<std::vector<std::uint8_t>> slices;        ///< NAL units of the picture
};

/// The largest pictures of level 4.1 (ITU-T H.265, table A.8), which every hardware decoder supports. The encoder needs
/// about 14 bytes per pixel, so this also limits memory.
inline constexpr int largestStillSide = 4216;
inline constexpr std::int64_t largestStillArea = 2'228'224;

/// The finest quantiser (no visible loss) and the coarsest one.
inline constexpr int finestQuantiser = 6;
inline constexpr int coarsestQuantiser = 51;

/// Encodes an 8-bit 4:2:0 picture with one quantiser (ITU-T H.265: 6 more means half the precision). Odd sizes are
/// padded by repeating the last column and row. The samples are released when the encoder has copied them, if the
/// caller has no other copy. threads: number of threads. file: named in errors. Throws MediaError, or Cancelled at once
/// when cancelled.
CodedStill encodeStill(const std::filesystem::path &file, Picture picture, int quantiser, int threads,
                       const Cancellation &cancellation = {});

} // namespace lumetwin::media::x265
