// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/RunTotals.h"

#include "engine/texts/Texts.h"
#include "tools/ProgressLine.h"

#include <fmt/ranges.h>

#include <algorithm>

namespace lumetwin::batch {
namespace {

bool hasWarning(const FileResult &result) {
    return std::ranges::any_of(result.warnings, [](const Warning &warning) { return !isNote(warning.kind); });
}

void count(RunTotals &totals, const FileResult &result) {
    switch (result.state) {
    case FileState::convertedWithWarnings:
        ++totals.withWarnings;
        [[fallthrough]];
    case FileState::converted:
        ++totals.converted;
        break;
    case FileState::wouldBeConverted:
        ++totals.wouldBeConverted;
        totals.withWarnings += hasWarning(result) ? 1 : 0;
        break;
    case FileState::skipped:
        ++totals.skipped;
        break;
    case FileState::upToDate:
        ++totals.upToDate;
        break;
    case FileState::failed:
        ++totals.failed;
        break;
    case FileState::cancelled:
        ++totals.cancelled;
        break;
    case FileState::notReached:
        ++totals.notReached;
        break;
    }
}

} // namespace

RunTotals totalsOf(const std::vector<FileResult> &results) {
    RunTotals totals;
    for (const FileResult &result : results)
        count(totals, result);
    return totals;
}

std::string summaryLine(const RunTotals &totals, double seconds) {
    std::vector<std::string> parts;
    if (totals.wouldBeConverted > 0)
        parts.push_back(
            formatted("batch.summary.would.be.converted.format", totals.wouldBeConverted, totals.withWarnings));
    else if (totals.withWarnings > 0)
        parts.push_back(formatted("batch.summary.converted.warnings.format", totals.converted, totals.withWarnings));
    else
        parts.push_back(formatted("batch.summary.converted.format", totals.converted));
    parts.push_back(formatted("batch.summary.skipped.format", totals.skipped));
    if (totals.upToDate > 0)
        parts.push_back(formatted("batch.summary.up.to.date.format", totals.upToDate));
    parts.push_back(formatted("batch.summary.failed.format", totals.failed));
    if (const std::int64_t unfinished = totals.cancelled + totals.notReached; unfinished > 0)
        parts.push_back(formatted("batch.summary.unfinished.format", unfinished));
    return formatted("batch.summary.format", fmt::format("{}", fmt::join(parts, text("batch.summary.separator"))),
                     clockTime(seconds));
}

} // namespace lumetwin::batch
