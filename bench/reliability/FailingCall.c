/* SPDX-License-Identifier: GPL-3.0-or-later
 * A preloaded library: the n-th call of one kind fails, as on a full disk or without memory.
 * LUMETWIN_FAIL=KIND:N, KIND one of write, seek, rename, sync, open (to write), allocation, thread.
 * LUMETWIN_SLOW=MICROSECONDS makes each read wait. What failed is told on standard error. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

static char kind[16];
static long wanted = -1;
static long delay;
static atomic_long count;

__attribute__((constructor)) static void begin(void) {
    const char *words = getenv("LUMETWIN_FAIL");
    if (words)
        sscanf(words, "%15[a-z]:%ld", kind, &wanted);
    if (getenv("LUMETWIN_SLOW"))
        delay = atol(getenv("LUMETWIN_SLOW"));
    atomic_store(&count, 0);
}

static int fails(const char *name, int error) {
    if (wanted < 0 || strcmp(name, kind) != 0 || atomic_fetch_add(&count, 1) + 1 != wanted)
        return 0;
    static const char note[] = "FAILED\n";
    syscall(SYS_write, 2, note, sizeof note - 1);
    errno = error;
    return 1;
}

#define NEXT(function) ((__typeof__(&function))dlsym(RTLD_NEXT, #function))

ssize_t write(int file, const void *bytes, size_t size) {
    return file > 2 && fails("write", ENOSPC) ? -1 : syscall(SYS_write, file, bytes, size);
}
ssize_t pwrite(int file, const void *bytes, size_t size, off_t place) {
    return fails("write", ENOSPC) ? -1 : syscall(SYS_pwrite64, file, bytes, size, place);
}
ssize_t pwrite64(int file, const void *bytes, size_t size, off64_t place) {
    return pwrite(file, bytes, size, place);
}
ssize_t pread(int file, void *bytes, size_t size, off_t place) {
    if (delay)
        usleep((useconds_t)delay);
    return syscall(SYS_pread64, file, bytes, size, place);
}
ssize_t pread64(int file, void *bytes, size_t size, off64_t place) {
    return pread(file, bytes, size, place);
}
off_t lseek(int file, off_t place, int whence) {
    return fails("seek", EIO) ? -1 : syscall(SYS_lseek, file, place, whence);
}
off64_t lseek64(int file, off64_t place, int whence) {
    return lseek(file, place, whence);
}
int rename(const char *from, const char *to) {
    return fails("rename", EIO) ? -1 : NEXT(rename)(from, to);
}
int renameat(int a, const char *from, int b, const char *to) {
    return fails("rename", EIO) ? -1 : NEXT(renameat)(a, from, b, to);
}
int renameat2(int a, const char *from, int b, const char *to, unsigned flags) {
    return fails("rename", EIO) ? -1 : (int)syscall(SYS_renameat2, a, from, b, to, flags);
}
int link(const char *from, const char *to) {
    return fails("rename", EIO) ? -1 : NEXT(link)(from, to);
}
int fsync(int file) {
    return fails("sync", EIO) ? -1 : NEXT(fsync)(file);
}
int fdatasync(int file) {
    return fails("sync", EIO) ? -1 : NEXT(fdatasync)(file);
}
int openat(int folder, const char *name, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = va_arg(rest, mode_t);
    va_end(rest);
    if ((flags & O_ACCMODE) != O_RDONLY && fails("open", EACCES))
        return -1;
    return (int)syscall(SYS_openat, folder, name, flags, mode);
}
int open(const char *name, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = va_arg(rest, mode_t);
    va_end(rest);
    return openat(AT_FDCWD, name, flags, mode);
}
int open64(const char *name, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = va_arg(rest, mode_t);
    va_end(rest);
    return openat(AT_FDCWD, name, flags, mode);
}
int pthread_create(pthread_t *thread, const pthread_attr_t *attributes, void *(*work)(void *), void *argument) {
    return fails("thread", EAGAIN) ? EAGAIN : NEXT(pthread_create)(thread, attributes, work, argument);
}

void *__libc_malloc(size_t size);
void *__libc_calloc(size_t number, size_t size);
void *__libc_realloc(void *old, size_t size);
void *__libc_memalign(size_t alignment, size_t size);

void *malloc(size_t size) {
    return fails("allocation", ENOMEM) ? NULL : __libc_malloc(size);
}
void *calloc(size_t number, size_t size) {
    return fails("allocation", ENOMEM) ? NULL : __libc_calloc(number, size);
}
void *realloc(void *old, size_t size) {
    return fails("allocation", ENOMEM) ? NULL : __libc_realloc(old, size);
}
void *aligned_alloc(size_t alignment, size_t size) {
    return fails("allocation", ENOMEM) ? NULL : __libc_memalign(alignment, size);
}
int posix_memalign(void **result, size_t alignment, size_t size) {
    if (fails("allocation", ENOMEM))
        return ENOMEM;
    *result = __libc_memalign(alignment, size);
    return *result ? 0 : ENOMEM;
}
