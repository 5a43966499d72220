// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace lumetwin::batch {

/// Keeps the order in which members are added.
using Json = nlohmann::ordered_json;

/// The document as ASCII text with a line feed at its end. Other characters and control characters are escaped. Bytes
/// that are not valid UTF-8 become U+FFFD.
inline std::string jsonText(const Json &document) {
    return document.dump(1, ' ', true, Json::error_handler_t::replace) + '\n';
}

} // namespace lumetwin::batch
