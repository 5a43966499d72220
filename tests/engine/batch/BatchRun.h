// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/batch/VideoProcessor.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <map>
#include <mutex>
#include <set>

namespace lumetwin::test {

struct Progress {
    std::int64_t index = 0, total = 0;
    std::string fileName;
    bool operator==(const Progress &) const = default;
};

struct Skip {
    std::string fileName, reason;
    bool operator==(const Skip &) const = default;
};

struct Completion {
    bool success = false;
    std::string message;
    bool operator==(const Completion &) const = default;
};

/// A batch whose conversions only write down what they were asked for. Files are told to be spatial by name.
class BatchRun : public testing::Test {
protected:
    BatchRun();
    ~BatchRun() override;

    /// Makes an empty file in the input folder and returns its place.
    std::filesystem::path file(const std::string &name);
    void spatial(const std::string &name) { spatialNames.insert(file(name).filename().string()); }
    /// What the conversion of a file does instead of writing its output.
    void onConvert(const std::string &name, std::function<void(const ConversionControl *)> action) {
        actions[name] = std::move(action);
    }
    void useFolder() { settings->inputFolderURL = input.path(); }

    /// May be called on any thread.
    void addEvent(const std::string &event);

    void run() { run(SystemVersion::current()); }
    void run(SystemVersion system);

    TemporaryFolder input, output;
    std::shared_ptr<ConversionSettings> settings = std::make_shared<ConversionSettings>();
    std::set<std::string> spatialNames;
    std::map<std::string, std::function<void(const ConversionControl *)>> actions;
    VideoProcessor *processor = nullptr; ///< while it runs
    Outcome nextOutcome;                 ///< what the next conversion tells, but for whether it was written
    /// The close looks at the files; only for runs that make them.
    std::function<MediaFacts(const ConversionInput &)> lookClosely;
    std::function<StereoFindings(const ConversionInput &, const StereoLayout &)> examine;
    /// The size of each picture.
    std::function<PictureSize(const media::InputFile &)> measure = [](const media::InputFile &) {
        return PictureSize{16, 8};
    };
    int photosAtOnce = 1;
    bool throwAtResult = false;
    bool finishesAllTheSame = false; ///< the next conversion that is cancelled has written its output before

    // What was seen.
    std::vector<Progress> progress;
    std::vector<Skip> skips;
    std::vector<Completion> completions;
    std::vector<FileResult> results;
    std::vector<std::string> log, failures, converted, calls;
    std::vector<std::string> events; ///< the order of progress, log lines, results, and what tests add
    std::vector<std::pair<std::int64_t, std::int64_t>> frames;
    std::vector<std::filesystem::path> sources;     ///< of the conversions
    std::vector<std::optional<double>> adjustments; ///< of the disparity, chosen for the conversions

private:
    std::mutex mutex_; ///< guards what conversions write down
    MediaOperations operations();
    MediaOperations::Converter converter(const char *name);
    Outcome convert(const std::string &converter, const media::InputFile &from, const media::OutputFile &to,
                    const ConversionControl &control);
};

} // namespace lumetwin::test
