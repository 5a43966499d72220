// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ProgressTexts.h"

#include "engine/Texts.h"

#include <algorithm>

namespace lumetwin {

namespace {

/// Truncated.
std::int64_t percentOf(double fraction) {
    return static_cast<std::int64_t>(fraction * 100);
}

} // namespace

double fractionOf(std::int64_t current, std::int64_t total) {
    return total < 1 ? 0 : static_cast<double>(current) / static_cast<double>(total);
}

double batchFraction(std::int64_t filesDone, std::int64_t filesTotal, double fractionOfFile) {
    return (static_cast<double>(filesDone) + std::clamp(fractionOfFile, 0.0, 1.0)) / static_cast<double>(filesTotal);
}

std::string filesText(std::int64_t current, std::int64_t total) {
    return formatted("progress.files.format", current, total, percentOf(fractionOf(current, total)));
}

std::string framesText(std::int64_t current, std::int64_t total) {
    if (total < 1)
        return formatted("progress.frame.processed.format", current);
    return formatted("progress.frame.format", current, total, percentOf(fractionOf(current, total)));
}

std::string elapsedText(std::chrono::steady_clock::duration elapsed) {
    const std::int64_t all = std::chrono::duration_cast<std::chrono::seconds>(elapsed).count();
    const std::int64_t minutes = all / 60, seconds = all - minutes * 60;
    return formatted("progress.elapsed.format", minutes, seconds);
}

std::string detailLine(const std::string &fileName, const std::string &reason) {
    return formatted("detail.file.format", fileName, reason) + "\n";
}

Alert stopQuestion() {
    return {text("alert.cancel.title"), text("alert.cancel.message"), {text("button.stop"), text("button.continue")}};
}

Alert resultAlert(bool success, const std::string &message, const std::string &details, bool showsOutputs) {
    Alert alert{text(success ? "alert.conversion.success" : "alert.conversion.error"), message};
    alert.style = success ? AlertStyle::informational : AlertStyle::warning;
    alert.details = details;
    if (showsOutputs)
        alert.sideButton = text("button.show.in.folder");
    return alert;
}

} // namespace lumetwin
