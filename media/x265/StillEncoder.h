// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Cancellation.h"
#include "media/Picture.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace lumetwin::media::x265 {

/// One picture coded as an HEVC Main Still Picture.
struct CodedStill {
    int width = 0; ///< as decoded: even, the picture's own size rounded up
    int height = 0;
    std::vector<std::vector<std::uint8_t>> parameterSets; ///< NAL units: video, sequence, picture parameter set
    std::vector<std::vector<std::uint8_t>> slices;        ///< NAL units of the picture
};

/// The largest pictures of level 4.1 (ITU-T H.265, table A.8), which every decoder in hardware takes. The encoder needs
/// about 14 bytes a pixel, so this bounds its memory, too.
inline constexpr int largestStillSide = 4216;
inline constexpr std::int64_t largestStillArea = 2'228'224;

/// The finest quantiser whose loss nobody sees, and the coarsest.
inline constexpr int finestQuantiser = 6;
inline constexpr int coarsestQuantiser = 51;

/// Codes an 8-bit 4:2:0 picture with one quantiser (ITU-T H.265: 6 more is half the precision). Odd sizes are padded by
/// repeating the last column and row. Samples are released as soon as the encoder has copied them, where the
/// caller kept no other copy of the picture. Works on the given number of threads. `file` is named in errors.
/// Throws MediaError, and Cancelled at once when it is to stop.
CodedStill encodeStill(const std::filesystem::path &file, Picture picture, int quantiser, int threads,
                       const Cancellation &cancellation = {});

} // namespace lumetwin::media::x265
