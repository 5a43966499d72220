// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

namespace lumetwin {

/// Prevents automatic sleep, through logind and the desktop portal, where they exist. The screen may still turn off.
class SleepInhibitor {
public:
    SleepInhibitor();
    ~SleepInhibitor();

    void inhibit();
    void release();

private:
    struct Locks;
    std::shared_ptr<Locks> locks_; ///< set while inhibiting; late answers see by a weak pointer that it is gone
};

} // namespace lumetwin
