// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionInput.h"
#include "model/MediaFacts.h"

#include <filesystem>
#include <optional>

namespace lumetwin {

/// Reads what lookAt() reads, and the layout of the eyes: from the tags of the container, from the first coded picture
/// of a film, and from the name. A file of the right eye makes it the layout of two files. Never throws.
MediaFacts lookClosely(const ConversionInput &input) noexcept;

/// The layout that the name of a file suggests: words such as "hsbs", "half-ou" or "3d sbs".
std::optional<StereoLayout> layoutOfName(const std::filesystem::path &file);

} // namespace lumetwin
