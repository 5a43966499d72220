// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/RowTexts.h"

#include "engine/batch/Forecast.h"
#include "engine/batch/OutputNaming.h"
#include "engine/texts/FileNames.h"
#include "engine/texts/LayoutTexts.h"
#include "engine/texts/WarningTexts.h"
#include "ui/widgets/Localized.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace lumetwin {

namespace {

using Kind = FileRow::Kind;

template <typename... Arguments> QString words(const char *key, const Arguments &...arguments) {
    return toQString(formatted(key, arguments...));
}

QString kindText(Kind kind) {
    return words(kind == Kind::photo   ? "files.kind.photo"
                 : kind == Kind::video ? "files.kind.video"
                                       : "files.kind.other");
}

QString sizeText(std::uintmax_t bytes) {
    const QLocale locale(QString::fromUtf8(textLanguage().data(), static_cast<qsizetype>(textLanguage().size())));
    return locale.formattedDataSize(static_cast<qint64>(bytes), 1, QLocale::DataSizeSIFormat);
}

/// Why no decoder reads its eyes; empty when one does.
std::string unreadableLayout(const FileRow &row, const ConversionSettings &settings) {
    return settings.direction == ConversionDirection::sbsToSpatial ? reasonNotToRead(layoutOf(row, settings)) : "";
}

/// What will happen to a file that was looked at and that the user did not leave out.
RowState expectedState(const FileRow &row, const ConversionSettings &settings, const std::set<std::string> &outputs) {
    if (!row.look->failure.empty())
        return {RowTone::error, words("files.state.unreadable.format", row.look->failure)};
    if (isAgainstDirection(row, settings))
        return {RowTone::warning,
                words(settings.direction == ConversionDirection::spatialToSBS ? "files.state.skip.not.spatial"
                                                                              : "files.state.skip.spatial")};
    if (const std::string why = unreadableLayout(row, settings); !why.empty())
        return {RowTone::error, toQString(why)};
    if (const std::vector<Warning> warnings = warningsOf(row, settings); !warnings.empty())
        return {RowTone::warning, toQString(warningText(warnings.front()))};
    const std::string name = outputName(row.named, settings);
    if (outputs.contains(name))
        return {RowTone::warning, words("files.state.replaces.format", name)};
    return {RowTone::plain, words("files.state.becomes.format", name)};
}

QString resultText(const FileResult &result) {
    switch (result.state) {
    case FileState::converted:
    case FileState::convertedWithWarnings:
        return words("files.result.converted");
    case FileState::wouldBeConverted:
        return words("files.result.would.be");
    case FileState::skipped:
        return words("files.result.skipped.format", result.reason);
    case FileState::upToDate:
        return words("files.result.up.to.date");
    case FileState::failed:
        return words("files.result.failed.format", result.reason);
    case FileState::cancelled:
        return words("files.result.stopped");
    case FileState::notReached:
        return words("files.result.not.reached");
    }
    return {};
}

RowTone toneOf(FileState state) {
    switch (state) {
    case FileState::converted:
    case FileState::upToDate:
        return RowTone::good;
    case FileState::convertedWithWarnings:
        return RowTone::warning;
    case FileState::failed:
        return RowTone::error;
    default:
        return RowTone::faded;
    }
}

RowState resultState(const FileResult &result) {
    QString text = resultText(result);
    if (!result.warnings.empty() && result.state == FileState::convertedWithWarnings)
        text = words("files.result.warning.format", warningText(result.warnings.front()));
    if (result.wasConverted())
        text += QStringLiteral(" · ") + sizeText(result.bytes) + QStringLiteral(" · ") + durationText(result.seconds);
    return {toneOf(result.state), text};
}

std::int64_t countOf(const std::vector<FileRow> &rows, FileState state) {
    return std::ranges::count_if(rows,
                                 [state](const FileRow &row) { return row.result && row.result->state == state; });
}

/// Each part of a summary that is not about nothing.
QString listed(std::initializer_list<std::pair<const char *, std::int64_t>> parts) {
    QStringList texts;
    for (const auto &[key, count] : parts)
        if (count > 0)
            texts << words(key, count);
    return texts.join(words("files.list.separator"));
}

} // namespace

QString durationText(double seconds) {
    const auto whole = static_cast<std::int64_t>(std::llround(std::max(seconds, 0.0)));
    constexpr std::int64_t minute = 60, hour = 3600;
    const auto twoDigits = [](std::int64_t number) {
        return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
    };
    if (whole < hour)
        return QStringLiteral("%1:%2").arg(whole / minute).arg(twoDigits(whole % minute));
    return QStringLiteral("%1:%2:%3")
        .arg(whole / hour)
        .arg(twoDigits(whole % hour / minute), twoDigits(whole % minute));
}

QString rowLayout(const FileRow &row, const ConversionSettings &settings) {
    if (!row.look || !row.look->failure.empty() || row.kind == Kind::unsupported)
        return {};
    if (isSpatialMedia(row.look->facts))
        return words("files.layout.spatial");
    const StereoLayout layout = layoutOf(row, settings);
    if (layout.source != LayoutSource::none)
        return words("files.layout.format", layoutWords(layout).shown, sourceWords(layout.source).shown);
    if (!row.findings || !row.findings->wasExamined)
        return {};
    if (!row.findings->seen)
        return words("files.layout.none");
    return words("files.layout.looks.format", layoutWords({.arrangement = *row.findings->seen}).shown);
}

QString rowDetails(const FileRow &row, const ConversionSettings &settings) {
    QStringList parts{kindText(row.kind)};
    if (const QString layout = rowLayout(row, settings); !layout.isEmpty())
        parts << layout;
    if (row.look && row.look->picture) {
        const PreviewFacts &picture = *row.look->picture;
        parts << words(picture.hasBothEyes ? "files.size.eye.format" : "files.size.format", picture.eyeWidth,
                       picture.eyeHeight);
        if (row.kind == Kind::video && picture.duration > 0)
            parts << durationText(picture.duration);
    }
    parts << sizeText(row.bytes);
    return parts.join(QStringLiteral(" · "));
}

RowState rowState(const FileRow &row, const ConversionSettings &settings, const std::set<std::string> &outputs) {
    if (row.fraction)
        return {RowTone::plain, words("files.state.running.format", static_cast<std::int64_t>(*row.fraction * 100))};
    if (row.result)
        return resultState(*row.result);
    if (row.kind == Kind::unsupported)
        return {RowTone::faded, words("files.state.unsupported")};
    if (row.isLeftOut)
        return {RowTone::faded, words("files.state.left.out")};
    if (!row.look)
        return {RowTone::faded, words("files.state.looking")};
    return expectedState(row, settings, outputs);
}

QString rowReport(const FileRow &row, const ConversionSettings &settings, const std::set<std::string> &outputs) {
    QStringList lines{rowState(row, settings, outputs).text};
    const std::vector<Warning> warnings = row.result      ? row.result->warnings
                                          : row.isLeftOut ? std::vector<Warning>()
                                          : row.look      ? warningsOf(row, settings)
                                                          : std::vector<Warning>();
    for (const Warning &warning : warnings)
        if (const QString line = toQString(warningText(warning)); !lines.front().contains(line))
            lines << line;
    return lines.join(QLatin1Char('\n'));
}

QString totalsText(const std::vector<FileRow> &rows, const ConversionSettings &settings) {
    if (std::ranges::any_of(rows, [](const FileRow &row) { return row.result.has_value(); }))
        return listed(
            {{"files.total.converted.format",
              countOf(rows, FileState::converted) + countOf(rows, FileState::convertedWithWarnings)},
             {"files.total.warnings.format", countOf(rows, FileState::convertedWithWarnings)},
             {"files.total.skipped.format", countOf(rows, FileState::skipped) + countOf(rows, FileState::upToDate)},
             {"files.total.failed.format", countOf(rows, FileState::failed)},
             {"files.total.stopped.format",
              countOf(rows, FileState::cancelled) + countOf(rows, FileState::notReached)}});
    const auto total = static_cast<std::int64_t>(rows.size());
    const std::int64_t left = std::ranges::count_if(rows, &FileRow::isLeftOut);
    const std::int64_t converted =
        std::ranges::count_if(rows, [&](const FileRow &row) { return willBeConverted(row, settings); });
    const std::int64_t unreadable = std::ranges::count_if(
        rows, [](const FileRow &row) { return !row.isLeftOut && row.look && !row.look->failure.empty(); });
    const QString others = listed({{"files.total.left.out.format", left},
                                   {"files.total.will.skip.format", total - left - converted - unreadable},
                                   {"files.total.unreadable.format", unreadable}});
    if (total == 0)
        return {};
    const QString files = countedText("files.total.files.one", "files.total.files.format", total);
    return others.isEmpty() ? files : files + words("files.list.separator") + others;
}

QString runReport(const std::vector<FileRow> &rows, const ConversionSettings &settings) {
    QString report;
    for (const FileRow &row : rows)
        if (row.result) {
            report += displayPath(row.file) + QLatin1Char('\n');
            for (const QString &line : rowReport(row, settings, {}).split(QLatin1Char('\n')))
                report += QStringLiteral("  ") + line + QLatin1Char('\n');
            if (!row.result->output.empty())
                report += QStringLiteral("  → ") + displayPath(row.result->output) + QLatin1Char('\n');
        }
    return report;
}

} // namespace lumetwin
