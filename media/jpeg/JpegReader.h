// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"
#include "media/InputFile.h"

namespace lumetwin::media::images {

/// See ImageFile::read().
StillImage readJpeg(const InputFile &file, const Cancellation &cancellation);
/// The image that begins at that place and lies before `end`.
StillImage readJpeg(const InputFile &file, std::uint64_t begin, std::uint64_t end, const Cancellation &cancellation);

} // namespace lumetwin::media::images
