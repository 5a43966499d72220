// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/stereo/EyeOrder.h"
#include "engine/stereo/StereoEvidence.h"
#include "media/EyePair.h"
#include "media/Picture.h"
#include "model/StereoFindings.h"
#include "model/StereoLayout.h"

#include <optional>
#include <span>

namespace lumetwin {

/// What one moment of a file looks like.
struct StereoLook {
    EyeArrangement arrangement = EyeArrangement::sideBySide; ///< in which the file is read
    StereoEvidence evidence;                                 ///< for this arrangement
    EyeOrderCues order;
    /// Another arrangement in which two eyes were seen, if the picture does not show them in this one.
    std::optional<EyeArrangement> other;
};

/// Looks at a picture that has both eyes, side by side or over-under; in another layout there is no evidence. If the
/// eyes are not there, looks for them in the other one of these two arrangements.
StereoLook lookAtFrame(const media::Picture &frame, const StereoLayout &layout);

/// The plane of an eye that has a picture of its own.
LumaPlane eyePlane(const media::Picture &eye);

/// Looks at two eyes whose pictures have one size. The arrangement is only handed on to the findings.
StereoLook lookAtEyes(const media::EyePair<LumaPlane> &eyes, EyeArrangement arrangement);

/// What the looks say together: of one for a photo, of several for a film.
StereoFindings findings(std::span<const StereoLook> looks);

} // namespace lumetwin
