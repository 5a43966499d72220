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

/// Two warnings name the window's setting that mends what they are about.
bool isMendedByKeepTiming(WarningKind kind) {
    return kind == WarningKind::speedChanged || kind == WarningKind::soundAway;
}

std::string lineOf(const Warning &warning) {
    const std::string option = isMendedByKeepTiming(warning.kind) ? " (--keep-timing)" : "";
    return formatted(isNote(warning.kind) ? "batch.note.format" : "batch.warning.format",
                     warningText(warning) + option);
}

} // namespace

RunDisplay::RunDisplay(VideoProcessor &processor, Console &console) : processor_(processor), console_(console) {
    processor.onLog = [this](const std::string &line) { holdLogged(line); };
    processor.onProgress = [this](auto index, auto total, const auto &name) { beginFile(index, total, name); };
    processor.onFrameProgress = [this](auto current, auto total) { noteFrame(current, total); };
    processor.onResult = [this](const FileResult &result) { noteResult(result); };
    processor.onComplete = [this](bool success, const auto &message) { complete(success, message); };
}

void RunDisplay::watch() {
    std::unique_lock lock(mutex_);
    while (!completion_.wait_for(lock, redrawInterval, [this] { return over_; })) {
        if (processor_.cancelRequested && !stopShown_) {
            stopShown_ = true;
            console_.printError(text("batch.stopping"));
        }
        redraw();
    }
    console_.clearProgress();
}

void RunDisplay::conclude() {
    if (processor_.cancelRequested || (!success_ && !started_))
        console_.printError(message_);
    if (!started_)
        return;
    console_.print(summaryLine(totalsOf(processor_.results()), secondsSince(began_)));
    for (const FileResult &result : processor_.results())
        if (result.state == FileState::failed)
            console_.print("  " + lastPathComponent(result.input) + ": " + result.reason);
}

/// The log's lines of a converted file are its warnings, which are shown below it in another form.
void RunDisplay::holdLogged(const std::string &line) {
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

void RunDisplay::noteFrame(std::int64_t current, std::int64_t total) {
    const std::scoped_lock lock(mutex_);
    if (!firstFrame_)
        firstFrame_ = Clock::now();
    progress_.frame = current;
    progress_.frames = total;
    progress_.seconds = secondsSince(*firstFrame_);
}

void RunDisplay::noteResult(const FileResult &result) {
    const std::scoped_lock lock(mutex_);
    if (result.wasConverted())
        showConverted(result);
    else
        for (const std::string &line : logged_)
            console_.print(line);
    logged_.clear();
}

void RunDisplay::showConverted(const FileResult &result) {
    console_.print(lastPathComponent(result.input) + " → " + lastPathComponent(result.output));
    for (const Warning &warning : result.warnings)
        console_.print("  " + lineOf(warning));
}

void RunDisplay::complete(bool success, const std::string &message) {
    const std::scoped_lock lock(mutex_);
    success_ = success;
    message_ = message;
    over_ = true;
    completion_.notify_one();
}

void RunDisplay::redraw() {
    if (console_.isLive() && started_)
        console_.showProgress(progressLine(progress_, console_.columns()));
}

} // namespace lumetwin::batch
