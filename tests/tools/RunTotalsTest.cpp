// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/RunTotals.h"

#include "engine/texts/Texts.h"

#include <gtest/gtest.h>

namespace lumetwin::batch {
namespace {

std::string summary(const std::vector<FileState> &states, double seconds) {
    std::vector<FileResult> results;
    for (const FileState state : states) {
        results.emplace_back();
        results.back().state = state;
    }
    return summaryLine(totalsOf(results), seconds);
}

using enum FileState;

TEST(RunTotals, SummaryCountsEveryState) {
    setTextLocale("en");
    const std::vector<FileState> states{converted, convertedWithWarnings,
                                        converted, skipped,
                                        skipped,   upToDate,
                                        upToDate,  upToDate,
                                        upToDate,  failed,
                                        cancelled, notReached,
                                        notReached};
    EXPECT_EQ(summary(states, 12.7), "Converted: 3 (1 with warnings), skipped: 2, up to date: 4, failed: 1, "
                                     "not finished: 3 (0:12)");
    setTextLocale("ja");
    EXPECT_EQ(summary(states, 12.7),
              "変換済み：3 件（うち警告あり 1 件）、スキップ：2 件、変更なし：4 件、失敗：1 件、未完了：3 件（0:12）");
    setTextLocale("en");
}

TEST(RunTotals, UnusualStatesAreLeftOutWhenZero) {
    setTextLocale("en");
    EXPECT_EQ(summary({}, 0), "Converted: 0, skipped: 0, failed: 0 (0:00)");
    EXPECT_EQ(summary({converted, skipped, failed}, 3723), "Converted: 1, skipped: 1, failed: 1 (1:02:03)");
}

} // namespace
} // namespace lumetwin::batch
