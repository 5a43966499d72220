// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Image.h"
#include "media/InputFile.h"

namespace lumetwin::media::images {

/// See ImageFile::read().
StillImage readJpeg(const InputFile &file, const Cancellation &cancellation);

} // namespace lumetwin::media::images
