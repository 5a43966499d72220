// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/MediaFacts.h"
#include "model/PictureSize.h"
#include "model/StereoFindings.h"

#include <nlohmann/json.hpp>

#include <optional>

namespace lumetwin::worker {

/// NaN and infinity (from damaged files) are encoded as absent values.
nlohmann::json encodeFacts(const MediaFacts &facts);
/// Throws ProtocolError.
MediaFacts decodeFacts(const nlohmann::json &content);

nlohmann::json encodeFindings(const StereoFindings &findings);
/// Throws ProtocolError.
StereoFindings decodeFindings(const nlohmann::json &content);

/// A layout, or null.
nlohmann::json encodeLayout(const std::optional<StereoLayout> &layout);
/// Throws ProtocolError.
std::optional<StereoLayout> decodeLayout(const nlohmann::json &content);

/// A number, or null; also for NaN and infinity.
nlohmann::json encodeValue(const std::optional<double> &value);
/// Throws ProtocolError.
std::optional<double> decodeValue(const nlohmann::json &value);

nlohmann::json encodeSize(const PictureSize &size);
/// Throws ProtocolError.
PictureSize decodeSize(const nlohmann::json &content);

} // namespace lumetwin::worker
