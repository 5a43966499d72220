// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/form/FormValues.h"

#include "ui/widgets/NumberParsing.h"

namespace lumetwin {

QString fieldText(const NumberRange &range, double value) {
    return QString::number(value, 'f', range.decimals);
}

std::optional<double> fieldValue(const NumberRange &range, const QString &text) {
    const auto value = parseDecimal(text);
    return value && range.accepts(*value) ? value : std::nullopt;
}

std::optional<std::int64_t> parseEyeSize(const QString &text) {
    const auto size = parseInteger(text);
    return size && *size >= 1 ? size : std::nullopt;
}

QString qualityText(double quality) {
    constexpr double binaryError = 1e-9;
    return QString::number(static_cast<int>(quality * 100 + binaryError)) + QLatin1Char('%');
}

} // namespace lumetwin
