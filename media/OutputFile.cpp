// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/OutputFile.h"

#include "media/Descriptor.h"
#include "media/MediaError.h"
#include "media/SignsOfLife.h"

#include <atomic>
#include <cerrno>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace lumetwin::media {

struct OutputFile::Opened {
    Opened(int theDescriptor, std::filesystem::path name, bool begun)
        : descriptor(theDescriptor), finalName(std::move(name)), isBegun(begun) {}

    Descriptor descriptor;
    std::filesystem::path finalName;
    mutable std::atomic<bool> isBegun; ///< nothing is removed any more
};

OutputFile::OutputFile(int descriptor, std::filesystem::path finalName, OldContent oldContent)
    : opened_(std::make_shared<const Opened>(descriptor, std::move(finalName), oldContent == OldContent::kept)) {}

const std::filesystem::path &OutputFile::path() const {
    return opened_->finalName;
}

int OutputFile::descriptor() const {
    return opened_->descriptor.get();
}

void OutputFile::writeAt(std::uint64_t position, std::span<const std::uint8_t> bytes) const {
    giveSignOfLife();
    emptyOnce();
    while (!bytes.empty()) {
        const ssize_t count = ::pwrite(descriptor(), bytes.data(), bytes.size(), static_cast<off_t>(position));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw MediaError::ofSystem(path(), MediaOperation::write, errno);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        position += static_cast<std::uint64_t>(count);
    }
}

/// Devices have no size, and cannot be truncated.
void OutputFile::emptyOnce() const {
    if (!opened_->isBegun.exchange(true) && size() > 0)
        truncate(0);
}

std::size_t OutputFile::readAt(std::uint64_t position, std::span<std::uint8_t> buffer) const {
    return readFrom(descriptor(), position, buffer, path());
}

std::uint64_t OutputFile::size() const {
    struct stat facts {};
    if (::fstat(descriptor(), &facts) != 0)
        throw MediaError::ofSystem(path(), MediaOperation::write, errno);
    return static_cast<std::uint64_t>(facts.st_size);
}

void OutputFile::truncate(std::uint64_t size) const {
    if (::ftruncate(descriptor(), static_cast<off_t>(size)) != 0)
        throw MediaError::ofSystem(path(), MediaOperation::write, errno);
}

} // namespace lumetwin::media
