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
#include <sys/stat.h>
#include <unistd.h>

namespace lumetwin::media {

namespace {

constexpr std::string_view suffix = ".partial";

/// The beginning of a UTF-8 name that fits into size bytes, without an incomplete character at its end.
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

int created(const std::filesystem::path &partial, const std::filesystem::path &output) {
    const int descriptor = ::open(partial.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (descriptor < 0)
        fail(output, MediaOperation::create, errno);
    return descriptor;
}

} // namespace

PartialFile::PartialFile(std::filesystem::path output)
    : output_(std::move(output)), path_(nameFor(output_)), file_(created(path_, output_), output_) {}

PartialFile::~PartialFile() {
    struct stat facts {};
    if (!isOver_ && ::fstat(file_.descriptor(), &facts) == 0 && facts.st_size == 0)
        discard();
}

std::filesystem::path PartialFile::nameFor(const std::filesystem::path &output) {
    return output.parent_path() /
           (shortened(output.filename().string(), NAME_MAX - suffix.size()) + std::string(suffix));
}

void PartialFile::finish() {
    // Some file systems report a full disk only here.
    if (::fdatasync(file_.descriptor()) != 0 && errno != EINVAL && errno != EROFS)
        fail(output_, MediaOperation::write, errno);
    std::error_code code;
    std::filesystem::rename(path_, output_, code);
    if (code)
        fail(output_, MediaOperation::rename, code.value());
    isOver_ = true;
}

void PartialFile::discard() noexcept {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
    isOver_ = true;
}

} // namespace lumetwin::media
