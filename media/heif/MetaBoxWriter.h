// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/heif/WrittenItems.h"

#include <cstdint>

namespace lumetwin::media::heif {

/// The `meta` box, its own boxes in the order that platform-written files have. `dataBegin` is where the first item in
/// the media data lies in the file.
Bytes metaBox(const WrittenItems &items, std::uint64_t dataBegin);

} // namespace lumetwin::media::heif
