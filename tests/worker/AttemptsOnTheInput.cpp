// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/worker/Attempts.h"

#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace lumetwin::test {
namespace {

using Around = const Surroundings &;

long mapForWriting(Around around) {
    void *memory = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, around.input, 0);
    return memory == MAP_FAILED ? -1 : 0;
}

/// These flags can make a file immutable (chattr +i).
long askForFlags(Around around) {
    long flags = 0;
    return ioctl(around.input, FS_IOC_GETFLAGS, &flags);
}

long setModeByYoungCall(Around around) {
    constexpr long fchmodat2 = 452;
    return syscall(fchmodat2, around.input, "", 0600, AT_EMPTY_PATH);
}

long setAttributeByYoungCall(Around around) {
    constexpr long setxattrat = 463;
    struct {
        const void *value;
        unsigned size;
        unsigned flags;
    } arguments{"x", 1, 0};
    return syscall(setxattrat, around.input, "", AT_EMPTY_PATH, "user.mark", &arguments, sizeof arguments);
}

std::vector<Attempt> attemptsOnItsFacts() {
    return {
        {"changes its mode", [](Around a) -> long { return chmod(a.inputName.c_str(), 0600); }},
        {"changes its mode by the descriptor", [](Around a) -> long { return fchmod(a.input, 0600); }},
        {"changes its mode by a young call", setModeByYoungCall, false, ENOSYS},
        {"changes its owner", [](Around a) -> long { return chown(a.inputName.c_str(), getuid(), getgid()); }},
        {"changes its owner by the descriptor", [](Around a) -> long { return fchown(a.input, getuid(), getgid()); }},
        {"changes its times", [](Around a) -> long { return utimes(a.inputName.c_str(), nullptr); }},
        {"changes its times by the descriptor", [](Around a) -> long { return futimens(a.input, nullptr); }},
        {"marks it", [](Around a) -> long { return setxattr(a.inputName.c_str(), "user.mark", "x", 1, 0); }, false},
        {"marks it by the descriptor", [](Around a) -> long { return fsetxattr(a.input, "user.mark", "x", 1, 0); },
         false},
        {"marks it by a young call", setAttributeByYoungCall, false, ENOSYS},
        {"asks for its flags", askForFlags, false},
        {"locks it", [](Around a) -> long { return flock(a.input, LOCK_SH | LOCK_NB); }},
    };
}

} // namespace

std::vector<Attempt> attemptsOnTheInput() {
    std::vector<Attempt> attempts{
        {"writes into it", [](Around a) -> long { return pwrite(a.input, "x", 1, 0); }, false, EBADF},
        {"cuts it", [](Around a) -> long { return ftruncate(a.input, 0); }, false, EINVAL},
        {"cuts it by its name", [](Around a) -> long { return truncate(a.inputName.c_str(), 1); }},
        {"maps it for writing", mapForWriting, false, EACCES},
        {"makes a hole in it",
         [](Around a) -> long { return fallocate(a.input, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 0, 1); }, false,
         EBADF},
        {"renames it", [](Around a) -> long { return rename(a.inputName.c_str(), a.beside("moved").c_str()); }},
        {"removes it", [](Around a) -> long { return unlink(a.inputName.c_str()); }},
    };
    for (Attempt &attempt : attemptsOnItsFacts())
        attempts.push_back(std::move(attempt));
    return attempts;
}

} // namespace lumetwin::test
