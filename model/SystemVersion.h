// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <compare>
#include <limits>

namespace lumetwin {

/// The version of the operating system, to test for missing features. On Linux every feature is available, so current()
/// returns a version above every limit. Tests use others.
struct SystemVersion {
    int major = 0;
    int minor = 0;
    int patch = 0;

    auto operator<=>(const SystemVersion &) const = default; // NOLINT(modernize-use-nullptr): clang-tidy's own 0

    static constexpr SystemVersion current() { return {std::numeric_limits<int>::max(), 0, 0}; }
};

} // namespace lumetwin
