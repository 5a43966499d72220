// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/hevc/NalUnits.h"

#include <vector>

namespace lumetwin::media::hevc {

/// The two codings whose streams consist of NAL units.
enum class Coding {
    avc, ///< ITU-T H.264
    hevc ///< ITU-T H.265
};

/// What a decoder is told before the first sample.
struct Configuration {
    int lengthSize = 0;          ///< bytes of the length before each unit of a sample; 0 for start codes
    std::vector<NalBytes> units; ///< parameter sets and messages, which point into the record
    NalBytes rest;               ///< what follows the record
};

/// Reads a configuration record (ISO/IEC 14496-15, 5.3.3.1 and 8.3.3.1) or units with start codes. Of a damaged record
/// it returns what could be read.
Configuration readConfiguration(Coding coding, NalBytes bytes);

/// The NAL units of a sample, at most 1024, none of them empty. A unit whose length is wrong ends the list.
std::vector<NalBytes> unitsOf(NalBytes sample, int lengthSize);

} // namespace lumetwin::media::hevc
