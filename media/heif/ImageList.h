// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/heif/HeifFile.h"
#include "media/heif/MetaBox.h"

namespace lumetwin::media::heif {

/// The maximum nesting of derived images. Cycles are refused too.
inline constexpr int deepestDerivation = 8;

/// Finds the items that are images, and their facts. Throws bmff::FormatError.
HeifFile interpret(const MetaBox &meta);

/// Reads a HEIF file from any source. Throws bmff::FormatError.
HeifFile readHeif(const bmff::Source &source);

} // namespace lumetwin::media::heif
