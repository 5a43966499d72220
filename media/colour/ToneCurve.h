// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace lumetwin::media::colour {

using Triple = std::array<double, 3>;

/// The luminance of full white in standard range, cd/m²: the reference white of HDR (ITU-R BT.2408, 2.1).
inline constexpr double standardWhite = 203;
/// The brightest that is assumed of a film that does not say it, and the screen that HLG is shown on, cd/m².
inline constexpr double usualPeak = 1000;

/// PQ (ITU-R BT.2100, table 4): a signal of 0 to 1 as luminance in cd/m², and back.
double luminanceOfPq(double signal);
double pqOfLuminance(double luminance);

/// HLG (ITU-R BT.2100, table 5): signals of 0 to 1 as light of a screen of 1000 cd/m². weights: those of the luminance.
Triple lightOfHlg(const Triple &signals, const Triple &weights);

/// The luminance in standard range, 1 is white, of a luminance in cd/m² (ITU-R BT.2390-10, 5.4.1, without lifted
/// black, and with an earlier knee). peak: the brightest of the film, cd/m².
double standardLuminance(double luminance, double peak);

/// The colour moved toward the given grey as far as it is needed to lie within 0 and 1. Colours near the bounds are
/// moved a little too, so that different colours stay different. Steps should look about equal, so not linear light.
Triple withinGamut(const Triple &colour, double grey);

} // namespace lumetwin::media::colour
