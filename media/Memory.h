// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::media {

/// Work in few very large blocks on several threads, such as one photo's. The allocator hands such blocks back to the
/// system as they are freed, and what is left of them at the scope's end: otherwise it would keep them for later, and
/// a long run of photos would grow.
class LargeBlockScope {
public:
    LargeBlockScope() noexcept;
    ~LargeBlockScope();
    LargeBlockScope(const LargeBlockScope &) = delete;
    LargeBlockScope &operator=(const LargeBlockScope &) = delete;
};

} // namespace lumetwin::media
