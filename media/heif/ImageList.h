// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/heif/HeifFile.h"
#include "media/heif/MetaBox.h"

namespace lumetwin::media::heif {

/// Derived images of derived images: as deep as this, and not deeper. Circles are refused too.
inline constexpr int deepestDerivation = 8;

/// Which of a file's items are its images, and what is said of them. Throws bmff::FormatError.
HeifFile interpret(const MetaBox &meta);

/// The HEIF file in any source. Throws bmff::FormatError.
HeifFile readHeif(const bmff::Source &source);

} // namespace lumetwin::media::heif
