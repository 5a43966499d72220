// SPDX-License-Identifier: GPL-3.0-or-later
// lumetwin-batch with conversions that only act. The beginning of a file's name says what happens to it:
//   fail…     an error
//   slow…     frames are reported until the run is stopped
//   stuck…    neither ends nor listens
//   warn…     is written with a warning and a note
//   fast…     is written and plays too fast
//   note…     is written with a note
//   plain…    is not spatial (nor is a folder)
// Everything else is written at once.
#include "engine/texts/ProcessorError.h"
#include "tools/Commands.h"

#include <chrono>
#include <fstream>
#include <thread>
#include <vector>

using namespace lumetwin;

namespace {

bool begins(const std::filesystem::path &file, const char *word) {
    return file.filename().string().rfind(word, 0) == 0;
}

bool isSpatial(const std::filesystem::path &file) {
    return !begins(file, "plain") && !std::filesystem::is_directory(file);
}

void reportFrames(const ConversionControl &control) {
    for (std::int64_t frame = 0; !control.cancelled(); frame += 8) {
        control.onFrameProgress(frame % 1000, 1000);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

[[noreturn]] void neverEnd() {
    for (;;)
        std::this_thread::sleep_for(std::chrono::seconds(1));
}

std::vector<Warning> warningsOf(const std::filesystem::path &input) {
    std::vector<Warning> warnings;
    if (begins(input, "warn"))
        warnings.push_back({WarningKind::framesMissing, {std::int64_t{90}, std::int64_t{120}}});
    if (begins(input, "fast"))
        warnings.push_back({WarningKind::speedChanged, {1.5}});
    if (begins(input, "warn") || begins(input, "note"))
        warnings.push_back({WarningKind::chaptersLeft, {std::int64_t{3}}});
    return warnings;
}

Outcome convert(const std::filesystem::path &input, const std::filesystem::path &output,
                const ConversionControl &control) {
    if (begins(input, "fail"))
        throw processorError("acted failure");
    if (begins(input, "stuck"))
        neverEnd();
    if (begins(input, "slow")) {
        reportFrames(control);
        return {.written = false, .framesWritten = 8, .framesExpected = 1000, .warnings = {}};
    }
    std::ofstream(output) << "converted";
    return {.written = true, .framesWritten = 90, .framesExpected = 120, .warnings = warningsOf(input)};
}

MediaOperations acted() {
    const auto video = [](const ConversionSettings &, const auto &input, const auto &output,
                          const ConversionControl &control, SystemVersion) { return convert(input, output, control); };
    const auto photo = [](const ConversionSettings &, const auto &input, const auto &output,
                          const ConversionControl &control) {
        return Outcome::ofPhoto(convert(input, output, control).warnings);
    };
    return {.isSpatialVideo = [](const auto &file, SystemVersion) { return isSpatial(file); },
            .isSpatialPhoto = isSpatial,
            .convertSpatialVideoToSBS = video,
            .convertSBSVideoToSpatial = video,
            .convertSpatialPhotoToSBS = photo,
            .convertSBSImageToSpatial = photo};
}

} // namespace

int main(int count, char **arguments) {
    return batch::runBatchTool(count, arguments, acted);
}
