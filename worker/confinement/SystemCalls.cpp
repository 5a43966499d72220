// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/confinement/SystemCalls.h"

#include "worker/confinement/BitPatterns.h"
#include "worker/confinement/BlockedSystemCalls.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <memory>
#include <sched.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <system_error>
#include <type_traits>
#include <unistd.h>

namespace lumetwin::worker {
namespace {

using Context = std::remove_pointer_t<scmp_filter_ctx>;
struct Releaser {
    void operator()(Context *filter) const { seccomp_release(filter); }
};
using Filter = std::unique_ptr<Context, Releaser>;

/// The functions of libseccomp return errors as negative numbers.
void check(int result, const char *what) {
    if (result < 0)
        throw std::system_error(-result, std::generic_category(), what);
}

/// A filter that allows everything.
Filter emptyFilter() {
    Filter filter(seccomp_init(SCMP_ACT_ALLOW));
    if (!filter)
        throw std::system_error(ENOMEM, std::generic_category(), "seccomp_init");
    // Without this flag, kernels before 5.16 slow the process down (a protection against speculative store bypass).
    check(seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_SSB, 1), "SSB");
    check(seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_NNP, 0), "NNP"); // it is set, and prctl is blocked later
    return filter;
}

/// Blocks a call, or only calls whose arguments meet the conditions. The call returns EPERM.
template <typename... Conditions> void block(Filter &filter, const char *name, Conditions... conditions) {
    const int number = seccomp_syscall_resolve_name(name);
    if (number == __NR_SCMP_ERROR)
        throw std::system_error(ENOSYS, std::generic_category(), name); // an error in the list
    if (number < 0)
        return; // does not exist on this architecture
    check(seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(EPERM), number, sizeof...(conditions), conditions...), name);
}

scmp_arg_cmp bitsOf(unsigned argument, std::uint32_t mask, std::uint32_t value) {
    return {argument, SCMP_CMP_MASKED_EQ, mask, value};
}

/// Allows only these values of an argument. The kernel reads only its lower 32 bits.
void allowOnly(Filter &filter, const char *name, unsigned argument, std::initializer_list<std::uint32_t> values) {
    for (const BitPattern &pattern : patternsExcept({values.begin(), values.size()}))
        block(filter, name, bitsOf(argument, pattern.mask, pattern.value));
}

void blockNewSpaces(Filter &filter) {
    for (const std::uint32_t space :
         {CLONE_NEWNS, CLONE_NEWCGROUP, CLONE_NEWUTS, CLONE_NEWIPC, CLONE_NEWUSER, CLONE_NEWPID, CLONE_NEWNET})
        block(filter, "clone", bitsOf(0, space, space));
    // A filter cannot check its flags, because they are in memory. After ENOSYS the C library uses clone instead.
    check(seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0), "clone3");
}

/// Calls that are allowed for this process but not for others.
void blockOtherProcesses(Filter &filter) {
    block(filter, "prlimit64", scmp_arg_cmp{0, SCMP_CMP_NE, 0, 0});
    block(filter, "prlimit64", scmp_arg_cmp{2, SCMP_CMP_NE, 0, 0}); // no new limits
    block(filter, "setpriority", scmp_arg_cmp{0, SCMP_CMP_NE, PRIO_PROCESS, 0});
    block(filter, "setpriority", scmp_arg_cmp{1, SCMP_CMP_NE, 0, 0});
    // Messages to an address; the channel is connected and needs no address.
    block(filter, "sendto", scmp_arg_cmp{4, SCMP_CMP_NE, 0, 0});
}

/// No new executable memory.
void blockNewCode(Filter &filter) {
    for (const char *call : {"mmap", "mmap2", "mprotect", "pkey_mprotect"})
        block(filter, call, bitsOf(2, PROT_EXEC, PROT_EXEC));
}

void blockUses(Filter &filter) {
    blockNewSpaces(filter);
    blockOtherProcesses(filter);
    blockNewCode(filter);
    allowOnly(filter, "prctl", 0, {PR_SET_NAME, PR_GET_NAME, PR_SET_PDEATHSIG, PR_SET_SECCOMP});
    // Blocked are, for example, signals to other processes (F_SETOWN), leases and locks.
    allowOnly(filter, "fcntl", 1, {F_DUPFD, F_GETFD, F_SETFD, F_GETFL, F_SETFL, F_DUPFD_CLOEXEC});
}

/// Blocks all calls that are newer than the list with ENOSYS, as on an older kernel. (Since 424 the numbers are the
/// same on all architectures.) That includes the calls of x32 on x86-64, which have higher numbers.
void blockNewerCalls() {
    constexpr unsigned firstNewer = 451; // after set_mempolicy_home_node, of Linux 5.17
    std::array filter{
        sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        sock_filter BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, firstNewer, 0, 1),
        sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
        sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{.len = filter.size(), .filter = filter.data()};
    if (prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program, 0, 0) != 0)
        throw std::system_error(errno, std::generic_category(), "seccomp");
}

} // namespace

void blockSystemCalls() {
    blockNewerCalls();
    Filter filter = emptyFilter();
    check(seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_OPTIMIZE, 2),
          "OPTIMIZE"); // a binary tree is faster than a list
    for (const BlockedSystemCalls &group : blockedSystemCalls)
        for (const char *name : group.names)
            if (name)
                block(filter, name);
    blockUses(filter);
    check(seccomp_load(filter.get()), "seccomp");
}

void blockSystemCallsOfForking() {
    Filter filter = emptyFilter();
    block(filter, "clone", bitsOf(0, CLONE_THREAD, 0));
    // Signals to this process stay allowed, for abort().
    block(filter, "tgkill", scmp_arg_cmp{0, SCMP_CMP_NE, static_cast<scmp_datum_t>(getpid()), 0});
    for (const std::uint32_t option : {PR_SET_PDEATHSIG, PR_SET_SECCOMP})
        block(filter, "prctl", bitsOf(0, ~std::uint32_t{0}, option));
    block(filter, "seccomp");
    check(seccomp_load(filter.get()), "seccomp");
}

} // namespace lumetwin::worker
