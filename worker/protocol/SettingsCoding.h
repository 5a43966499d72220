// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace lumetwin::worker {

/// Encodes the settings that converters use; not those that only the batch uses, such as inputs and output folder.
nlohmann::json encodeSettings(const ConversionSettings &settings);
/// Throws ProtocolError.
std::shared_ptr<ConversionSettings> decodeSettings(const nlohmann::json &content);

} // namespace lumetwin::worker
