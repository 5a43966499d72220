// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <nlohmann/json.hpp>

#include <exception>

namespace lumetwin::worker {

/// Encodes an error with all its values. ProcessorError, SpatialPhotoError, media::MediaError, media::Cancelled,
/// std::system_error, std::bad_alloc and std::length_error keep their types; every other std::exception becomes a
/// std::runtime_error with the same message.
nlohmann::json encodeError(const std::exception_ptr &error);
/// Returns the error. Throws ProtocolError.
std::exception_ptr decodeError(const nlohmann::json &content);

} // namespace lumetwin::worker
