// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace lumetwin::worker {

/// System calls that a worker never needs, and what they could be used for.
struct BlockedSystemCalls {
    const char *purpose;
    const char *names[32]; ///< null behind the last one
};

inline constexpr std::array blockedSystemCalls{
    BlockedSystemCalls{
        "Opening files: the user's other files, and /proc/self/fd, through which the input could be opened again "
        "for writing.",
        {"open", "openat", "openat2", "creat", "open_by_handle_at", "name_to_handle_at", "uselib"}},
    BlockedSystemCalls{"Creating, moving and removing names.",
                       {"unlink", "unlinkat", "rename", "renameat", "renameat2", "link", "linkat", "symlink",
                        "symlinkat", "mkdir", "mkdirat", "rmdir", "mknod", "mknodat"}},
    BlockedSystemCalls{"Listing folders, reading links, changing the working directory.",
                       {"getdents", "getdents64", "readlink", "readlinkat", "access", "faccessat", "faccessat2",
                        "chdir", "fchdir", "chroot", "statfs", "ustat"}},
    BlockedSystemCalls{
        "Truncating by name. (ftruncate is allowed: it needs a writable descriptor, and that of the input is "
        "read-only. Landlock covers truncation only since version 3.)",
        {"truncate", "truncate64"}},
    BlockedSystemCalls{
        "Changing owner, mode, times and attributes. That is possible even through a read-only descriptor.",
        {"chmod",     "fchmod",    "fchmodat",  "chown",     "lchown",      "fchown",       "fchownat",
         "chown32",   "lchown32",  "fchown32",  "utime",     "utimes",      "utimensat",    "utimensat_time64",
         "futimesat", "setxattr",  "lsetxattr", "fsetxattr", "removexattr", "lremovexattr", "fremovexattr",
         "getxattr",  "lgetxattr", "listxattr", "llistxattr"}},
    BlockedSystemCalls{
        "Locking the input and watching files.",
        {"flock", "inotify_init", "inotify_init1", "inotify_add_watch", "fanotify_init", "fanotify_mark"}},
    BlockedSystemCalls{"Network and local sockets. (The channel is already open and connected.)",
                       {"socket", "socketpair", "connect", "bind", "listen", "accept", "accept4", "socketcall"}},
    BlockedSystemCalls{"Starting programs and processes. (clone and prctl are handled in SystemCalls.cpp, seccomp is "
                       "blocked there later.)",
                       {"execve", "execveat", "fork", "vfork", "memfd_create", "memfd_secret", "userfaultfd"}},
    BlockedSystemCalls{
        "Reading, changing, signalling or slowing down other processes.",
        {"ptrace",        "process_vm_readv", "process_vm_writev",  "process_madvise",   "process_mrelease",
         "kcmp",          "pidfd_open",       "pidfd_getfd",        "pidfd_send_signal", "kill",
         "tkill",         "rt_sigqueueinfo",  "rt_tgsigqueueinfo",  "migrate_pages",     "move_pages",
         "sched_setattr", "sched_setparam",   "sched_setscheduler", "ioprio_set",        "get_robust_list"}},
    BlockedSystemCalls{"Memory, queues and semaphores that are shared with other processes.",
                       {"shmget", "shmat", "shmctl", "semget", "semctl", "semop", "semtimedop", "semtimedop_time64",
                        "msgget", "msgsnd", "msgrcv", "msgctl", "ipc", "mq_open", "mq_unlink"}},
    BlockedSystemCalls{"Becoming another user, and raising limits.",
                       {"setuid",     "setgid",      "setreuid",    "setregid",   "setresuid",  "setresgid",
                        "setfsuid",   "setfsgid",    "setgroups",   "setuid32",   "setgid32",   "setreuid32",
                        "setregid32", "setresuid32", "setresgid32", "setfsuid32", "setfsgid32", "setgroups32",
                        "capset",     "setpgid",     "setsid",      "setrlimit",  "personality"}},
    BlockedSystemCalls{
        "Parts of the kernel that had many security bugs and that conversions do not need. (prctl is handled in "
        "SystemCalls.cpp.)",
        {"bpf", "perf_event_open", "io_uring_setup", "io_uring_enter", "io_uring_register", "io_setup", "io_submit",
         "io_cancel", "io_destroy", "io_getevents", "add_key", "request_key", "keyctl", "modify_ldt", "vm86", "vm86old",
         "ioctl", "remap_file_pages", "lookup_dcookie"}},
    BlockedSystemCalls{"Mounts and namespaces.",
                       {"mount", "umount", "umount2", "pivot_root", "open_tree", "move_mount", "fsopen", "fsconfig",
                        "fsmount", "fspick", "mount_setattr", "unshare", "setns"}},
    BlockedSystemCalls{"Administration of the machine.",
                       {"acct",
                        "swapon",
                        "swapoff",
                        "reboot",
                        "sethostname",
                        "setdomainname",
                        "init_module",
                        "finit_module",
                        "delete_module",
                        "kexec_load",
                        "kexec_file_load",
                        "settimeofday",
                        "clock_settime",
                        "clock_settime64",
                        "adjtimex",
                        "clock_adjtime",
                        "clock_adjtime64",
                        "stime",
                        "ioperm",
                        "iopl",
                        "quotactl",
                        "quotactl_fd",
                        "nfsservctl",
                        "syslog",
                        "vhangup",
                        "sync",
                        "syncfs"}},
};

} // namespace lumetwin::worker
