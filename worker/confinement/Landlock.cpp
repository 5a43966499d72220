// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/confinement/Landlock.h"

#include <cstdint>
#include <sys/syscall.h>
#include <unistd.h>

// <linux/landlock.h> may be older than the kernel, so the interface is defined here (from the kernel's
// Documentation/userspace-api/landlock.rst).
#ifndef SYS_landlock_create_ruleset
#define SYS_landlock_create_ruleset 444
#define SYS_landlock_restrict_self 446
#endif

namespace lumetwin::worker {
namespace {

struct RulesetAttributes {
    std::uint64_t fileRights = 0;
    std::uint64_t networkRights = 0; // since version 4
    std::uint64_t scopes = 0;        // since version 6
};

constexpr std::uint32_t askVersion = 1; // LANDLOCK_CREATE_RULESET_VERSION

constexpr std::uint64_t firstBits(int count) {
    return (std::uint64_t{1} << count) - 1;
}

/// All rights that a version of the interface has.
RulesetAttributes everythingOf(int version) {
    RulesetAttributes attributes{.fileRights = firstBits(13)}; // execute to make_sym
    if (version >= 2)
        attributes.fileRights = firstBits(14); // refer: rename and link across folders
    if (version >= 3)
        attributes.fileRights = firstBits(15); // truncate
    if (version >= 4)
        attributes.networkRights = firstBits(2); // bind_tcp, connect_tcp
    if (version >= 5)
        attributes.fileRights = firstBits(16); // ioctl_dev
    if (version >= 6)
        attributes.scopes = firstBits(2); // abstract_unix_socket, signal
    return attributes;
}

} // namespace

int blockFileSystem() {
    const long version = syscall(SYS_landlock_create_ruleset, nullptr, 0, askVersion);
    if (version < 1)
        return 0;
    // Older kernels accept the longer record if the unknown part is 0.
    const RulesetAttributes attributes = everythingOf(static_cast<int>(version));
    const long rules = syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0);
    if (rules < 0)
        return 0;
    const long result = syscall(SYS_landlock_restrict_self, rules, 0);
    close(static_cast<int>(rules));
    return result == 0 ? static_cast<int>(version) : 0;
}

} // namespace lumetwin::worker
