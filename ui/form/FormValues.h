// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/SettingsRules.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace lumetwin {

// Conversion between the texts of the form's controls and their values.

/// The text of a value in the field beside its slider.
QString fieldText(const NumberRange &range, double value);
/// The value of a field's text; nullopt when it is not a number or lies outside the range.
std::optional<double> fieldValue(const NumberRange &range, const QString &text);
/// The width or height of one eye, in pixels, at least 1; nullopt for any other text.
std::optional<std::int64_t> parseEyeSize(const QString &text);
/// The quality as a percentage, rounded down, such as "29%". 0.29 gives 29 although its binary value is slightly
/// smaller.
QString qualityText(double quality);

} // namespace lumetwin
