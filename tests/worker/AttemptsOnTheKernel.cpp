// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/worker/Attempts.h"

#include <array>
#include <fcntl.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <termios.h>
#include <unistd.h>

namespace lumetwin::test {
namespace {

using Around = const Surroundings &;

long typeIntoTheTerminal(Around) {
    char letter = 'x';
    return ioctl(STDERR_FILENO, TIOCSTI, &letter);
}

/// The filter must ignore the upper 32 bits of an argument, as the kernel does.
long disguised(long call, unsigned long value) {
    constexpr unsigned long above = 1UL << 32;
    return syscall(call, value | above, 0, 0, 0, 0);
}

} // namespace

std::vector<Attempt> attemptsOnTheKernel() {
    return {
        {"sets up io_uring",
         [](Around) {
             std::array<char, 120> parameters{};
             return syscall(SYS_io_uring_setup, 1, parameters.data());
         },
         false},
        {"loads a program into the kernel", [](Around) { return syscall(SYS_bpf, 0, nullptr, 0); }, false},
        {"measures the kernel", [](Around) { return syscall(SYS_perf_event_open, nullptr, 0, -1, -1, 0); }, false},
        {"handles page faults", [](Around) { return syscall(SYS_userfaultfd, 1); }, false},
        {"asks for keys", [](Around) { return syscall(SYS_keyctl, 0, -3, 0, 0, 0); }, false},
        {"makes a name space", [](Around) -> long { return unshare(CLONE_NEWUSER); }, false},
        {"enters a name space", [](Around a) -> long { return setns(a.input, 0); }, false},
        {"mounts", [](Around) -> long { return mount("none", "/mnt", "tmpfs", 0, nullptr); }, false},
        {"types into the terminal", typeIntoTheTerminal, false},
        {"filters calls by itself", [](Around) { return syscall(SYS_seccomp, SECCOMP_GET_ACTION_AVAIL, 0, nullptr); },
         false},
        {"filters calls by the old call",
         [](Around) -> long { return prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT + 100); }, false},
        {"allows core files", [](Around) -> long { return prctl(PR_SET_DUMPABLE, 1); }},
        {"allows core files in disguise", [](Around) { return disguised(SYS_prctl, PR_SET_DUMPABLE); }, false},
        {"makes a call of tomorrow", [](Around) { return syscall(600); }, false, ENOSYS},
    };
}

std::vector<Attempt> allAttempts() {
    std::vector<Attempt> all;
    for (const auto &group : {attemptsOnFiles(), attemptsOnTheInput(), attemptsOnTheNetwork(), attemptsOnProcesses(),
                              attemptsOnTheKernel()})
        all.insert(all.end(), group.begin(), group.end());
    return all;
}

} // namespace lumetwin::test
