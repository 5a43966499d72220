// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace lumetwin::batch {

/// Keeps the order in which members are added.
using Json = nlohmann::ordered_json;

/// The document as text that ends a line. It is ASCII, whatever names hold: characters beyond it and control characters
/// are escaped, and bytes that are no UTF-8 become U+FFFD.
inline std::string jsonText(const Json &document) {
    return document.dump(1, ' ', true, Json::error_handler_t::replace) + '\n';
}

} // namespace lumetwin::batch
