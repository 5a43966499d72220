// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/NumberParsing.h"

#include <charconv>
#include <cmath>
#include <string>

namespace lumetwin {

namespace {

/// Parses the whole text with from_chars, but also accepts a leading "+".
template <typename Number> std::optional<Number> parseWhole(std::string digits) {
    if (digits.starts_with("+"))
        digits = digits.starts_with("+-") ? "" : digits.substr(1);
    Number number{};
    const char *end = digits.data() + digits.size();
    const auto [rest, error] = std::from_chars(digits.data(), end, number);
    if (error != std::errc() || rest != end)
        return std::nullopt;
    return number;
}

} // namespace

std::optional<double> parseDecimal(const QString &text) {
    QString withPoint = text;
    if (!text.contains(QLatin1Char('.')) && text.count(QLatin1Char(',')) == 1)
        withPoint.replace(QLatin1Char(','), QLatin1Char('.'));
    const auto number = parseWhole<double>(withPoint.toStdString());
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<std::int64_t> parseInteger(const QString &text) {
    return parseWhole<std::int64_t>(text.toStdString());
}

} // namespace lumetwin
