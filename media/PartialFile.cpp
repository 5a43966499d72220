// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/PartialFile.h"

#include "media/MediaError.h"

#include <cerrno>
#include <climits>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace lumetwin::media {

namespace {

constexpr std::string_view suffix = ".partial";

/// As much of a name in UTF-8 as fits, without half a character at its end.
std::string shortened(std::string name, std::size_t size) {
    if (name.size() <= size)
        return name;
    while (size > 0 && (static_cast<unsigned char>(name[size]) & 0xC0) == 0x80)
        --size;
    name.resize(size);
    return name;
}

[[noreturn]] void fail(const std::filesystem::path &output, MediaOperation operation, int number) {
    throw MediaError::ofSystem(output, operation, number);
}

} // namespace

PartialFile::PartialFile(std::filesystem::path output) : output_(std::move(output)), path_(nameFor(output_)) {}

std::filesystem::path PartialFile::nameFor(const std::filesystem::path &output) {
    return output.parent_path() /
           (shortened(output.filename().string(), NAME_MAX - suffix.size()) + std::string(suffix));
}

void PartialFile::finish() const {
    std::error_code code;
    std::filesystem::rename(path_, output_, code);
    if (code)
        fail(output_, MediaOperation::rename, code.value());
}

void PartialFile::discard() const noexcept {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
}

PartialFileWriter::PartialFileWriter(const PartialFile &file)
    : output_(file.output()), descriptor_(::open(file.path().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
    if (descriptor_ < 0)
        fail(output_, MediaOperation::create, errno);
}

PartialFileWriter::~PartialFileWriter() {
    if (descriptor_ >= 0)
        ::close(descriptor_);
}

void PartialFileWriter::write(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            fail(output_, MediaOperation::write, errno);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

void PartialFileWriter::close() {
    // The descriptor is gone whatever close() says.
    if (::close(std::exchange(descriptor_, -1)) != 0 && errno != EINTR)
        fail(output_, MediaOperation::write, errno);
}

} // namespace lumetwin::media
