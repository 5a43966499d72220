// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media::x265 {

/// How many frames the two-view encoder works on at once (2 to 8): enough for this number of processors. width, height:
/// of one view, in pixels; unitSize: of a coding tree unit.
///
/// In one picture, a row of coding tree units follows the row above at a distance of two units (wavefronts: ITU-T
/// H.265, 9.3.2.4). So on average, rows × columns / (columns + 2 × (rows − 1)) rows are worked on. Large pictures need
/// fewer frames at once, so that the memory for them grows with the processors, not with the size of a picture.
int framesAtOnce(int processors, int width, int height, int unitSize);

} // namespace lumetwin::media::x265
