// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/Descriptor.h"

#include "media/MediaError.h"
#include "media/SignsOfLife.h"

#include <cerrno>
#include <limits>

#include <unistd.h>

namespace lumetwin::media {

void Descriptor::close() noexcept {
    if (descriptor_ >= 0)
        ::close(descriptor_);
}

std::size_t readFrom(int descriptor, std::uint64_t position, std::span<std::uint8_t> buffer,
                     const std::filesystem::path &file) {
    giveSignOfLife();
    constexpr auto farthest = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
    std::size_t done = 0;
    while (done < buffer.size() && position + done <= farthest) {
        const ssize_t count =
            ::pread(descriptor, buffer.data() + done, buffer.size() - done, static_cast<off_t>(position + done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw MediaError::ofSystem(file, MediaOperation::read, errno);
        if (count == 0)
            break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

} // namespace lumetwin::media
