// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/progress/ProgressTexts.h"

#include "engine/inspection/MediaKinds.h"
#include "engine/texts/Texts.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <utility>

namespace lumetwin {

namespace {

/// Rounded down.
std::int64_t percentOf(double fraction) {
    return static_cast<std::int64_t>(fraction * 100);
}

const std::string separator = " · ";

std::pair<std::int64_t, std::int64_t> minutesAndSeconds(std::chrono::seconds time) {
    return {time.count() / 60, time.count() % 60};
}

std::string nothingConvertedMessage(const BatchResult &result) {
    if (!result.success)
        return result.message + "\n" + text("alert.nothing.way.on");
    std::string message = formatted("alert.all.skipped.format", result.skipped) + "\n";
    if (result.skipReasons == std::set{text("status.skipped.not.spatial")})
        return message + text("alert.all.skipped.not.spatial");
    if (result.skipReasons == std::set{text("status.skipped.spatial")})
        return message + text("alert.all.skipped.spatial");
    return message + text("alert.all.skipped.details");
}

/// The engine's message, and how many files have warnings or were skipped, if any.
std::string messageAndCounts(const BatchResult &result) {
    if (result.warned == 0 && result.skipped == 0)
        return result.message;
    return result.message + "\n" + formatted("status.warned.skipped.format", result.warned, result.skipped);
}

} // namespace

double fractionOf(std::int64_t current, std::int64_t total) {
    return total < 1 ? 0 : static_cast<double>(current) / static_cast<double>(total);
}

double batchFraction(std::int64_t filesDone, std::int64_t filesTotal, double fractionOfFile) {
    return (static_cast<double>(filesDone) + std::clamp(fractionOfFile, 0.0, 1.0)) / static_cast<double>(filesTotal);
}

double batchFraction(const std::vector<double> &frames, std::int64_t filesDone, std::int64_t filesTotal,
                     double fractionOfFile) {
    const double all = std::accumulate(frames.begin(), frames.end(), 0.0);
    const auto current = frames.begin() + std::clamp<std::int64_t>(filesDone, 0, std::ssize(frames));
    if (std::ssize(frames) != filesTotal || all <= 0)
        return batchFraction(filesDone, filesTotal, fractionOfFile);
    const double done = std::accumulate(frames.begin(), current, 0.0);
    const double ofCurrent = current == frames.end() ? 0 : *current * std::clamp(fractionOfFile, 0.0, 1.0);
    return (done + ofCurrent) / all;
}

std::string filesText(std::int64_t current, std::int64_t total, double fraction) {
    return formatted("progress.files.format", current, total, percentOf(fraction));
}

std::string framesText(std::int64_t current, std::int64_t total, std::optional<double> rate) {
    const std::string frames =
        total < 1 ? formatted("progress.frame.processed.format", current)
                  : formatted("progress.frame.format", current, total, percentOf(fractionOf(current, total)));
    return rate ? frames + separator + formatted("progress.rate.format", *rate) : frames;
}

std::optional<std::chrono::seconds> timeLeft(std::chrono::steady_clock::duration elapsed, double fraction) {
    using namespace std::chrono;
    constexpr double enough = 0.01; // of the batch
    if (elapsed < 5s || fraction < enough || fraction >= 1)
        return std::nullopt;
    return seconds(std::llround(duration<double>(elapsed).count() * (1 - fraction) / fraction));
}

std::string elapsedText(std::chrono::steady_clock::duration elapsed, std::optional<std::chrono::seconds> left) {
    const auto [minutes, seconds] = minutesAndSeconds(std::chrono::duration_cast<std::chrono::seconds>(elapsed));
    const std::string elapsedPart = formatted("progress.elapsed.format", minutes, seconds);
    if (!left)
        return elapsedPart;
    const auto [minutesLeft, secondsLeft] = minutesAndSeconds(*left);
    return elapsedPart + separator + formatted("progress.left.format", minutesLeft, secondsLeft);
}

std::string activityText(const std::string &fileName) {
    return text(isPhotoFile(fileName) ? "progress.photo" : "progress.frame.calculating");
}

std::string detailLine(const std::string &fileName, const std::string &reason) {
    std::string shortReason = reason;
    if (const auto position = shortReason.find(" " + fileName); position != std::string::npos)
        shortReason.erase(position, fileName.size() + 1);
    return formatted("detail.file.format", fileName, shortReason) + "\n";
}

bool BatchResult::isEmpty() const {
    return !anyConverted && (success ? skipped > 0 : message == text("error.no.media.files"));
}

Alert stopQuestion() {
    Alert question{
        text("alert.cancel.title"), text("alert.cancel.message"), {text("button.stop"), text("button.continue")}};
    question.defaultButton = 1;
    return question;
}

Alert quitQuestion() {
    Alert question{
        text("alert.quit.title"), text("alert.quit.message"), {text("button.stop.quit"), text("button.continue")}};
    question.defaultButton = 1;
    return question;
}

Alert resultAlert(const BatchResult &result) {
    const bool empty = result.isEmpty();
    Alert alert{text(empty            ? "alert.nothing.title"
                     : result.success ? "alert.conversion.success"
                                      : "alert.conversion.error"),
                empty ? nothingConvertedMessage(result) : messageAndCounts(result)};
    alert.style = result.success && !empty ? AlertStyle::informational : AlertStyle::warning;
    alert.details = result.details;
    if (result.showsOutputs)
        alert.sideButton = text("button.show.in.folder");
    return alert;
}

} // namespace lumetwin
