// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/worker/Attempts.h"

#include <csignal>
#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/shm.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace lumetwin::test {
namespace {

using Around = const Surroundings &;

/// Ends the child if the fork was not refused.
long parentOnly(long process) {
    if (process == 0)
        _exit(0);
    return process;
}

long execute(Around) {
    char name[] = "true";
    char *const arguments[] = {name, nullptr};
    return execve("/bin/true", arguments, nullptr);
}

long executeTheInput(Around around) {
    char name[] = "x";
    char *const arguments[] = {name, nullptr};
    return syscall(SYS_execveat, around.input, "", arguments, nullptr, AT_EMPTY_PATH);
}

long cloneAnew(Around) {
    struct {
        std::uint64_t flags = 0, pidfd = 0, childTid = 0, parentTid = 0, exitSignal = SIGCHLD, stack = 0, size = 0,
                      tls = 0;
    } arguments;
    return parentOnly(syscall(SYS_clone3, &arguments, sizeof arguments));
}

long readTheParent(Around) {
    char here = 0;
    iovec local{&here, 1};
    iovec remote{&here, 1}; // any address; the permission is checked first
    return process_vm_readv(getppid(), &local, 1, &remote, 1, 0);
}

long limitTheParent(Around) {
    rlimit limit{};
    return prlimit(getppid(), RLIMIT_CORE, nullptr, &limit);
}

long raiseALimit(Around) {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    return setrlimit(RLIMIT_NOFILE, &limit);
}

long mapNewCode(Around) {
    return mmap(nullptr, 4096, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) == MAP_FAILED ? -1 : 0;
}

long makeMemoryCode(Around) {
    void *memory = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return mprotect(memory, 4096, PROT_READ | PROT_EXEC);
}

long shareMemory(Around) {
    const int segment = shmget(IPC_PRIVATE, 4096, 0600);
    return segment < 0 ? segment : shmctl(segment, IPC_RMID, nullptr);
}

std::vector<Attempt> attemptsToStartOne() {
    return {
        {"executes a program", execute, false}, // would replace the test's own process
        {"executes the input", executeTheInput, false},
        {"forks", [](Around) { return parentOnly(fork()); }},
        {"forks by the old call", [](Around) { return parentOnly(syscall(SYS_fork)); }},
        {"clones itself", [](Around) { return parentOnly(syscall(SYS_clone, SIGCHLD, 0, 0, 0, 0)); }},
        {"clones itself beside itself",
         [](Around) { return parentOnly(syscall(SYS_clone, CLONE_PARENT | SIGCHLD, 0, 0, 0, 0)); }, false},
        {"clones itself by a new call", cloneAnew, true, ENOSYS},
        {"makes a program file in memory", [](Around) -> long { return memfd_create("x", 0); }},
        {"maps new code", mapNewCode},
        {"turns memory into code", makeMemoryCode},
    };
}

std::vector<Attempt> attemptsToReachOne() {
    return {
        {"attaches to its parent", [](Around) -> long { return ptrace(PTRACE_ATTACH, getppid(), nullptr, nullptr); },
         false},
        {"lets itself be traced", [](Around) -> long { return ptrace(PTRACE_TRACEME, 0, nullptr, nullptr); }},
        {"reads its parent's memory", readTheParent, false},
        {"signals its parent", [](Around) -> long { return kill(getppid(), 0); }},
        {"signals a thread of its parent", [](Around) { return syscall(SYS_tgkill, getppid(), getppid(), 0); }},
        {"signals a thread by the old call", [](Around) { return syscall(SYS_tkill, getppid(), 0); }},
        {"signals by a descriptor", [](Around a) -> long { return fcntl(a.input, F_SETOWN, getppid()); }},
        {"gets hold of its parent", [](Around) { return syscall(SYS_pidfd_open, getppid(), 0); }},
        {"limits its parent", limitTheParent, false},
        {"sets a limit anew", raiseALimit},
        {"slows its parent down", [](Around) -> long { return setpriority(PRIO_PROCESS, getppid(), 10); }, false},
        {"shares memory", shareMemory},
        {"stays when its parent ends", [](Around) -> long { return prctl(PR_SET_PDEATHSIG, 0); }},
    };
}

} // namespace

std::vector<Attempt> attemptsOnProcesses() {
    std::vector<Attempt> attempts = attemptsToStartOne();
    for (Attempt &attempt : attemptsToReachOne())
        attempts.push_back(std::move(attempt));
    return attempts;
}

} // namespace lumetwin::test
