// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/confinement/Capabilities.h"

#include <array>
#include <cerrno>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

namespace lumetwin::worker {

void dropCapabilities() {
    __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
    const std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> none{};
    // The C library has no function for this.
    if (syscall(SYS_capset, &header, none.data()) != 0)
        throw std::system_error(errno, std::generic_category(), "capset");
}

} // namespace lumetwin::worker
