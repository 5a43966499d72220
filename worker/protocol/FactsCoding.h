// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/MediaFacts.h"
#include "model/PictureSize.h"

#include <nlohmann/json.hpp>

namespace lumetwin::worker {

/// NaN and infinity (from damaged files) are encoded as absent values.
nlohmann::json encodeFacts(const MediaFacts &facts);
/// Throws ProtocolError.
MediaFacts decodeFacts(const nlohmann::json &content);

nlohmann::json encodeSize(const PictureSize &size);
/// Throws ProtocolError.
PictureSize decodeSize(const nlohmann::json &content);

} // namespace lumetwin::worker
