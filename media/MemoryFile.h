// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/OutputFile.h"

#include <cstdint>
#include <filesystem>

namespace lumetwin::media {

/// A file of that many bytes that exists only in memory, to be filled by another process. Whoever has its descriptor
/// cannot make it larger. Memory is used only for the parts that were written. `name` is for messages. Throws
/// MediaError.
OutputFile makeMemoryFile(std::uint64_t size, std::filesystem::path name);

} // namespace lumetwin::media
