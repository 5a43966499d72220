// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/heif/ImageList.h"
#include "tests/media/heif/HeifBuilder.h"

namespace lumetwin::test {

inline media::HeifFile read(const Bytes &file) {
    return media::heif::readHeif(*media::bmff::fromMemory(file));
}

inline media::HeifFile read(const HeifBuilder &heif) {
    return read(heif.file());
}

} // namespace lumetwin::test
