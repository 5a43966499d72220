// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media {

/// Work in very large blocks on several threads, such as one photo's. The allocator hands the largest back to the
/// system as they are freed, and what it has kept of smaller ones at the scope's end: otherwise a long run of photos
/// would grow.
class LargeBlockScope {
public:
    LargeBlockScope() noexcept;
    ~LargeBlockScope();
    LargeBlockScope(const LargeBlockScope &) = delete;
    LargeBlockScope &operator=(const LargeBlockScope &) = delete;
};

} // namespace lumetwin::media
