// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "worker/protocol/ProtocolError.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

namespace lumetwin::worker {

// Strict reading of messages: a wrong type, a number out of range or a missing field is a ProtocolError. Messages from
// a worker are not trusted.

inline const nlohmann::json &field(const nlohmann::json &object, const char *name) {
    const auto found = object.is_object() ? object.find(name) : object.end();
    if (found == object.end())
        throw ProtocolError(std::string("without ") + name);
    return *found;
}

inline std::int64_t integer(const nlohmann::json &value, std::int64_t lowest = std::numeric_limits<std::int64_t>::min(),
                            std::int64_t highest = std::numeric_limits<std::int64_t>::max()) {
    const bool fits = value.is_number_unsigned()
                          ? value.get<std::uint64_t>() <= std::uint64_t{std::numeric_limits<std::int64_t>::max()}
                          : value.is_number_integer();
    if (!fits || value.get<std::int64_t>() < lowest || value.get<std::int64_t>() > highest)
        throw ProtocolError("no such number");
    return value.get<std::int64_t>();
}

inline double number(const nlohmann::json &value) {
    if (!value.is_number_float() || !std::isfinite(value.get<double>()))
        throw ProtocolError("no such number");
    return value.get<double>();
}

inline bool boolean(const nlohmann::json &value) {
    if (!value.is_boolean())
        throw ProtocolError("neither true nor false");
    return value.get<bool>();
}

inline const std::string &string(const nlohmann::json &value) {
    if (!value.is_string())
        throw ProtocolError("no text");
    return value.get_ref<const std::string &>();
}

inline const nlohmann::json &array(const nlohmann::json &value) {
    if (!value.is_array())
        throw ProtocolError("no list");
    return value;
}

/// A value of an enumeration that starts at 0.
template <typename Case> Case caseOf(const nlohmann::json &value, Case last) {
    return static_cast<Case>(integer(value, 0, static_cast<std::int64_t>(last)));
}

/// The number of an enumerator, for a message.
template <typename Case> std::int64_t numberOf(Case value) {
    static_assert(std::is_enum_v<Case>);
    return static_cast<std::int64_t>(value);
}

} // namespace lumetwin::worker
