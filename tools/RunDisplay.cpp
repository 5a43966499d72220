// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/RunDisplay.h"

#include "engine/texts/FileNames.h"
#include "engine/texts/Texts.h"
#include "engine/texts/WarningTexts.h"
#include "tools/RunTotals.h"

#include <fmt/format.h>

namespace lumetwin::batch {
namespace {

constexpr std::chrono::milliseconds redrawInterval{100};

double secondsSince(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// These two warnings suggest a setting of the window. Its option here is --keep-timing.
bool isSolvedByKeepTiming(WarningKind kind) {
    return kind == WarningKind::speedChanged || kind == WarningKind::soundAway;
}

std::string warningLine(const Warning &warning) {
    const std::string option = isSolvedByKeepTiming(warning.kind) ? " (--keep-timing)" : "";
    return formatted(isNote(warning.kind) ? "batch.note.format" : "batch.warning.format",
                     warningText(warning) + option);
}

} // namespace

RunDisplay::RunDisplay(VideoProcessor &processor, Console &console) : processor_(processor), console_(console) {
    processor.onLog = [this](const std::string &line) { keepLogLine(line); };
    processor.onProgress = [this](auto index, auto total, const auto &name) { beginFile(index, total, name); };
    processor.onFrameProgress = [this](auto current, auto total) { updateFrame(current, total); };
    processor.onResult = [this](const FileResult &result) { showResult(result); };
    processor.onComplete = [this](bool success, const auto &message) { complete(success, message); };
}

void RunDisplay::showProgressUntilEnd() {
    std::unique_lock lock(mutex_);
    while (!completion_.wait_for(lock, redrawInterval, [this] { return runEnded_; })) {
        if (processor_.cancelRequested && !stopShown_) {
            stopShown_ = true;
            console_.printError(text("batch.stopping"));
        }
        redraw();
    }
    console_.clearProgress();
}

void RunDisplay::printSummary() {
    if (processor_.cancelRequested || (!success_ && !started_))
        console_.printError(message_);
    if (!started_)
        return;
    console_.print(summaryLine(totalsOf(processor_.results()), secondsSince(startTime_)));
    for (const FileResult &result : processor_.results())
        if (result.state == FileState::failed)
            console_.print("  " + lastPathComponent(result.input) + ": " + result.reason);
}

/// Keeps log lines until the result of the file is known. For a converted file they are its warnings, which are shown
/// in another form below it.
void RunDisplay::keepLogLine(const std::string &line) {
    const std::scoped_lock lock(mutex_);
    logged_.push_back(line);
}

void RunDisplay::beginFile(std::int64_t index, std::int64_t total, const std::string &name) {
    const std::scoped_lock lock(mutex_);
    started_ = true;
    progress_ = {.index = index, .total = total, .fileName = name};
    firstFrame_.reset();
    if (!console_.isLive())
        console_.print(fmt::format("[{}/{}] {}", index + 1, total, name));
}

void RunDisplay::updateFrame(std::int64_t current, std::int64_t total) {
    const std::scoped_lock lock(mutex_);
    if (!firstFrame_)
        firstFrame_ = Clock::now();
    progress_.frame = current;
    progress_.frames = total;
    progress_.seconds = secondsSince(*firstFrame_);
}

void RunDisplay::showResult(const FileResult &result) {
    const std::scoped_lock lock(mutex_);
    if (result.wasConverted() || result.state == FileState::wouldBeConverted)
        showConverted(result);
    else
        for (const std::string &line : logged_)
            console_.print(line);
    logged_.clear();
}

void RunDisplay::showConverted(const FileResult &result) {
    const std::string name = lastPathComponent(result.input);
    console_.print(result.wasConverted() ? name + " → " + lastPathComponent(result.output)
                                         : formatted("batch.would.be.converted.format", name));
    for (const Warning &warning : result.warnings)
        console_.print("  " + warningLine(warning));
}

void RunDisplay::complete(bool success, const std::string &message) {
    const std::scoped_lock lock(mutex_);
    success_ = success;
    message_ = message;
    runEnded_ = true;
    completion_.notify_one();
}

void RunDisplay::redraw() {
    if (console_.isLive() && started_)
        console_.showProgress(progressLine(progress_, console_.columns()));
}

} // namespace lumetwin::batch
