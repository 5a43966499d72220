// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace lumetwin {

/// What happens where a file of an output's name is there already, also one that this same run has written.
enum class OnExisting {
    replace,
    keepBoth, ///< the new one gets a number: trip_sbs 2.mp4
    skip,     ///< the input is passed over
};

inline constexpr std::array allOnExisting{OnExisting::replace, OnExisting::keepBoth, OnExisting::skip};

} // namespace lumetwin
