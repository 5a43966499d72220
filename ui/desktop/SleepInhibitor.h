// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

namespace lumetwin {

/// Keeps the machine from going to sleep by itself, through logind and through the desktop portal, whichever there is.
/// The screen may still go dark.
class SleepInhibitor {
public:
    SleepInhibitor();
    ~SleepInhibitor();

    void inhibit();
    void release();

private:
    struct Locks;
    std::shared_ptr<Locks> locks_; ///< held while inhibiting; answers that come later find it gone
};

} // namespace lumetwin
