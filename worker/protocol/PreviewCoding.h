// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/preview/StereoPreview.h"

#include <nlohmann/json.hpp>

namespace lumetwin::worker {

nlohmann::json encodePreviewRequest(const PreviewRequest &request);
/// Throws ProtocolError.
PreviewRequest decodePreviewRequest(const nlohmann::json &content);

/// NaN and infinity (from damaged files) are encoded as unknown values.
nlohmann::json encodePreviewFacts(const PreviewFacts &facts);
/// Throws ProtocolError, also for values that cannot be.
PreviewFacts decodePreviewFacts(const nlohmann::json &content);

} // namespace lumetwin::worker
