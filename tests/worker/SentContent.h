// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "worker/protocol/Channel.h"

#include <nlohmann/json.hpp>

namespace lumetwin::worker {

/// The content of a message after it was sent.
inline nlohmann::json sentContent(const nlohmann::json &content) {
    return contentOf(nlohmann::json::to_cbor(content));
}

} // namespace lumetwin::worker
