// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace lumetwin {

/// What happens when a file with the name of an output already exists, even one that the same run has written.
enum class OnExisting {
    replace,
    keepBoth, ///< the new file gets a number: trip_sbs 2.mp4
    skip,     ///< the input is skipped
};

inline constexpr std::array allOnExisting{OnExisting::replace, OnExisting::keepBoth, OnExisting::skip};

} // namespace lumetwin
