// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media {

/// How a picture that is one of a file's two eyes, or holds both, is stored.
struct StereoPacking {
    enum class Arrangement { sideBySide, overUnder, alternating, interleaved, secondUnread };

    Arrangement arrangement = Arrangement::sideBySide;
    bool rightEyeFirst = false; ///< the right eye is in the left or upper half, or is the first picture
    bool isHalf = false;        ///< each eye is squeezed to half its width (over-under: height)

    bool operator==(const StereoPacking &) const = default;
};

} // namespace lumetwin::media
