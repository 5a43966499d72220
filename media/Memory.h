// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media {

/// A scope for work with very large blocks on several threads, such as converting a photo. The allocator returns the
/// largest blocks to the system when they are freed, and kept memory of smaller ones at the end of the scope. Otherwise
/// memory would grow during many photos.
class LargeBlockScope {
public:
    LargeBlockScope() noexcept;
    ~LargeBlockScope();
    LargeBlockScope(const LargeBlockScope &) = delete;
    LargeBlockScope &operator=(const LargeBlockScope &) = delete;
};

} // namespace lumetwin::media
