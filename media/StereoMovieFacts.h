// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/InputFile.h"

#include <cstdint>
#include <optional>
#include <string>

namespace lumetwin::media {

/// The stereo facts in the first sample entry of the first video track, in the integer units of the file.
struct StereoMovieFacts {
    bool hasVideoTrack = false;
    bool hasSampleDescription = false;
    std::optional<std::uint32_t> baseline;              ///< micrometres (vexu/eyes/cams/blin)
    std::optional<std::uint32_t> horizontalFieldOfView; ///< thousandths of a degree (hfov)
    std::optional<std::int32_t> disparityAdjustment;    ///< ten-thousandths of the image width (vexu/eyes/cmfy/dadj)
    std::optional<std::uint8_t> eyes;                   ///< bits of stri: 1 left, 2 right, 4 additional, 8 reversed
    std::optional<std::uint8_t> heroEye;                ///< hero: 0 none, 1 left, 2 right
    std::string projection;                             ///< prji: "rect", "equi", …; empty when missing
    bool anyBaseline = false;                           ///< one of the track's sample entries has a baseline
    bool encrypted = false;                             ///< one of the track's sample entries is protected (encv)
    bool multilayer = false;                            ///< a layered HEVC configuration (lhvC) is present
    bool multiviewAvc = false;                          ///< a second view is coded as in H.264, annex H (mvcC)
    std::string packing;                                ///< pkin: "side", "over", …; empty when missing
    std::optional<std::uint8_t>
        frameMode; ///< st3d: 0 one eye, 1 over-under, 2 side by side, 4 the same with right first
};

/// Reads the headers of a QuickTime or ISO base media file, no media data. For a damaged, different or unreadable file
/// the facts have no video track. Never throws.
StereoMovieFacts readStereoMovieFacts(const InputFile &file) noexcept;

} // namespace lumetwin::media
