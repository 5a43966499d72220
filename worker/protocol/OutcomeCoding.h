// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Outcome.h"

#include <nlohmann/json.hpp>

namespace lumetwin::worker {

nlohmann::json encodeOutcome(const Outcome &outcome);
/// Throws ProtocolError, also if the values of a warning do not match its kind.
Outcome decodeOutcome(const nlohmann::json &content);

} // namespace lumetwin::worker
