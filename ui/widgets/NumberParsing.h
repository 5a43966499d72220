// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace lumetwin {

/// Parses the whole text as a finite decimal number with a point or a comma, such as "63.4", "63,4", "-2" or "+.5e1".
std::optional<double> parseDecimal(const QString &text);
/// Parses the whole text as a decimal integer: an optional sign and digits. nullopt on overflow.
std::optional<std::int64_t> parseInteger(const QString &text);

} // namespace lumetwin
