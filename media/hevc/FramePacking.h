// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/StereoPacking.h"
#include "media/hevc/CodedUnits.h"

#include <optional>

namespace lumetwin::media::hevc {

/// A frame packing arrangement message (ITU-T H.264, D.1.25; H.265, D.2.16).
struct FramePacking {
    StereoPacking packing;
    /// Whether the stream's pixel aspect is that of the eyes after each got its full size back: then `packing.isHalf`
    /// is what the message says. Otherwise it says nothing of it.
    bool aspectIsOfWholeEyes = false;
};

/// The first such message of a unit that is a SEI unit before pictures. nullopt where there is none, where it ends an
/// earlier one or says that there is only one eye, and where it is damaged.
std::optional<FramePacking> readFramePacking(NalBytes unit, Coding coding);

/// Whether a unit belongs to a second view that is coded as H.264, annex H (MVC), has it.
bool isOfSecondView(NalBytes unit);

/// What a stream says of its packing, at its first picture, from the decoder's configuration and that picture's sample.
std::optional<FramePacking> packingOfStream(Coding coding, NalBytes configuration, NalBytes firstSample);

} // namespace lumetwin::media::hevc
