// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/MemoryFile.h"

#include "media/Descriptor.h"
#include "media/MediaError.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#ifndef MFD_NOEXEC_SEAL
#define MFD_NOEXEC_SEAL 0x0008U // Linux 6.3
#endif

namespace lumetwin::media {

namespace {

int anonymousFile() {
    constexpr unsigned flags = MFD_CLOEXEC | MFD_ALLOW_SEALING;
    const int descriptor = memfd_create("lumetwin-pixels", flags | MFD_NOEXEC_SEAL);
    return descriptor < 0 && errno == EINVAL ? memfd_create("lumetwin-pixels", flags) : descriptor;
}

} // namespace

OutputFile makeMemoryFile(std::uint64_t size, std::filesystem::path name) {
    Descriptor descriptor(anonymousFile());
    if (!descriptor || ftruncate(descriptor.get(), static_cast<off_t>(size)) != 0 ||
        fcntl(descriptor.get(), F_ADD_SEALS, F_SEAL_GROW | F_SEAL_SEAL) != 0)
        throw MediaError::ofSystem(std::move(name), MediaOperation::create, errno);
    return {descriptor.release(), std::move(name), OutputFile::OldContent::kept};
}

} // namespace lumetwin::media
