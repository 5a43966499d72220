// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <string>

namespace lumetwin::media {

/// Metadata texts by name: creation_time (ISO 8601), location (ISO 6709), make, model, title, … The names are those of
/// the demuxing library.
using MovieTags = std::map<std::string, std::string>;

} // namespace lumetwin::media
