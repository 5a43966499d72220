// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/texts/Words.h"
#include "media/MediaError.h"

#include <cstdint>
#include <exception>
#include <string_view>

namespace lumetwin {

/// The text keys of media operations and reasons. `other` has no key, because its text comes from a library.
std::string_view keyOf(media::MediaOperation operation);
std::string_view keyOf(media::MediaReason reason);

/// The message: the operation, the file, and why it failed.
Words errorWords(const media::MediaError &error);

/// The cause only, for a message that already names the file, such as "it is damaged: Premature end of JPEG file".
Words causeOf(const media::MediaError &error);

/// The cause of any error: a media error, out of memory, a size above all limits (std::length_error), otherwise its
/// what().
Words causeOf(const std::exception &error);

/// The cause when a picture of this size cannot be created.
Words causeOfSize(std::int64_t width, std::int64_t height);

} // namespace lumetwin
