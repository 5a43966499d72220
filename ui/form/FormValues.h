// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/form/StereoRanges.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace lumetwin {

// What the texts of the form's controls stand for, and the other way round.

/// The text that a slider writes into its field.
QString fieldText(const StereoRange &range, double value);
/// The value of a field's text; none for what is no number or lies outside the range.
std::optional<double> fieldValue(const StereoRange &range, const QString &text);
/// The width or height of one eye, from 1, in pixels; none for any other text.
std::optional<std::int64_t> eyeSize(const QString &text);
/// The percentage, truncated; a decimal such as 0.29 counts as what it says although its binary form lies below.
QString qualityText(double quality);

} // namespace lumetwin
