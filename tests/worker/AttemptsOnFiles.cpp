// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/worker/Attempts.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace lumetwin::test {
namespace {

std::filesystem::path secret(const Surroundings &around) {
    return around.inputName.parent_path() / ".ssh" / "id_ed25519";
}

long openThroughProc(const Surroundings &around) {
    return open(("/proc/self/fd/" + std::to_string(around.input)).c_str(), O_RDWR);
}

long openat2Secret(const Surroundings &around) {
    open_how how{};
    how.flags = O_RDONLY;
    return syscall(SYS_openat2, AT_FDCWD, secret(around).c_str(), &how, sizeof how);
}

} // namespace

std::vector<Attempt> attemptsOnFiles() {
    using Around = const Surroundings &;
    return {
        {"reads a secret key", [](Around a) -> long { return open(secret(a).c_str(), O_RDONLY); }},
        {"reads it by an old call", [](Around a) { return syscall(SYS_open, secret(a).c_str(), O_RDONLY); }},
        {"reads it by a new call", openat2Secret},
        {"writes beside the output",
         [](Around a) -> long { return open(a.beside("beside.txt").c_str(), O_CREAT | O_WRONLY, 0600); }},
        {"creates beside the output",
         [](Around a) { return syscall(SYS_creat, a.beside("created.txt").c_str(), 0600); }},
        {"writes a file without a name",
         [](Around a) -> long { return open(a.outputName.parent_path().c_str(), O_TMPFILE | O_WRONLY, 0600); }, false},
        {"lists a folder", [](Around a) -> long { return open(a.inputName.parent_path().c_str(), O_DIRECTORY); }},
        {"makes a folder", [](Around a) -> long { return mkdir(a.beside("folder").c_str(), 0700); }},
        {"makes a pipe", [](Around a) -> long { return mkfifo(a.beside("pipe").c_str(), 0600); }},
        {"links", [](Around a) -> long { return symlink("/etc", a.beside("link").c_str()); }},
        {"links the input", [](Around a) -> long { return link(a.inputName.c_str(), a.beside("hard").c_str()); }},
        {"reads a link",
         [](Around) {
             char target[64];
             return static_cast<long>(readlink("/proc/self/exe", target, sizeof target));
         }},
        {"asks what it may do", [](Around a) -> long { return access(a.inputName.c_str(), R_OK); }},
        {"goes to another folder", [](Around) -> long { return chdir("/tmp"); }},
        {"watches a folder", [](Around) -> long { return inotify_init1(0); }},
        {"asks about the disk",
         [](Around) {
             struct statfs facts {};
             return static_cast<long>(statfs("/", &facts));
         }},
        {"opens the input again for writing", openThroughProc},
    };
}

} // namespace lumetwin::test
