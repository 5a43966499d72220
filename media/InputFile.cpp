// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/InputFile.h"

#include "media/Descriptor.h"
#include "media/MediaError.h"

#include <cerrno>
#include <limits>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lumetwin::media {

namespace {

/// Opens without waiting, so that a pipe without a writer is refused at once.
Descriptor openRegular(const std::filesystem::path &file) {
    Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat facts {};
    if (!descriptor || ::fstat(descriptor.get(), &facts) != 0)
        throw MediaError::ofSystem(file, MediaOperation::open, errno);
    if (S_ISDIR(facts.st_mode))
        throw MediaError::ofSystem(file, MediaOperation::open, EISDIR);
    if (!S_ISREG(facts.st_mode))
        throw MediaError(file, MediaOperation::open, 0, MediaReason::noRegularFile);
    return descriptor;
}

} // namespace

struct InputFile::Opened {
    Descriptor descriptor;
    std::filesystem::path name;
};

InputFile::InputFile(const std::filesystem::path &file)
    : opened_(std::make_shared<const Opened>(Opened{openRegular(file), file})) {}

InputFile::InputFile(int descriptor, std::filesystem::path name)
    : opened_(std::make_shared<const Opened>(Opened{Descriptor(descriptor), std::move(name)})) {}

const std::filesystem::path &InputFile::path() const {
    return opened_->name;
}

int InputFile::descriptor() const {
    return opened_->descriptor.get();
}

std::uint64_t InputFile::size() const {
    struct stat facts {};
    if (::fstat(descriptor(), &facts) != 0)
        throw MediaError::ofSystem(path(), MediaOperation::read, errno);
    return static_cast<std::uint64_t>(facts.st_size);
}

std::size_t InputFile::readAt(std::uint64_t position, std::span<std::uint8_t> buffer) const {
    return readFrom(descriptor(), position, buffer, path());
}

} // namespace lumetwin::media
