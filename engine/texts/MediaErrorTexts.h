// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/texts/Words.h"
#include "media/MediaError.h"

#include <cstdint>
#include <exception>
#include <string_view>

namespace lumetwin {

/// The keys of the texts of media/'s operations and reasons. `other` has none: its words are a library's.
std::string_view keyOf(media::MediaOperation operation);
std::string_view keyOf(media::MediaReason reason);

/// What was attempted with which file, and why it failed.
Words errorWords(const media::MediaError &error);

/// Why it failed, for a message that names the file already: "it is damaged: Premature end of JPEG file".
Words causeOf(const media::MediaError &error);

/// The cause that any error tells of: of media/, of memory, of a size beyond all limits (std::length_error), else in
/// its own words.
Words causeOf(const std::exception &error);

/// Why a picture of this size cannot be made.
Words causeOfSize(std::int64_t width, std::int64_t height);

} // namespace lumetwin
