// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/bmff/BoxWriter.h"

#include <vector>

namespace lumetwin::media::heif {

using bmff::Bytes;

/// Builds the payload of `hvcC` (ISO/IEC 14496-15, 8.3.3.1.2) for 4-byte lengths from NAL units: video, sequence and
/// picture parameter set, without start codes. Throws std::invalid_argument when they are not what they should be.
Bytes hevcConfiguration(const std::vector<Bytes> &parameterSets);

} // namespace lumetwin::media::heif
