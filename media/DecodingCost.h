// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media {

/// About how long one processor decodes random access pictures of HEVC, in seconds: a part for their pixels, of all
/// views together, and one for their bytes. As bench/preview.py found it on the machine for which it states its limits.
constexpr double decodingSeconds(double pixels, double bytes) {
    return 25e-9 * pixels + 160e-9 * bytes;
}

/// Whether that is too long, shared by two processors, for somebody who waits for each picture.
constexpr bool isSlowToDecode(double pixels, double bytes) {
    return decodingSeconds(pixels, bytes) > 0.55;
}

} // namespace lumetwin::media
