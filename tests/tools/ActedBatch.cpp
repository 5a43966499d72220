// SPDX-License-Identifier: GPL-3.0-or-later
// lumetwin-batch with conversions that only act. The beginning of a file's name says what happens to it:
//   fail…     an error
//   slow…     frames are reported until the run is stopped
//   stuck…    neither ends nor listens
//   plain…    is not spatial (nor is a folder)
// Everything else is written at once.
#include "engine/ProcessorError.h"
#include "tools/Commands.h"

#include <chrono>
#include <fstream>
#include <thread>

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

void convert(const std::filesystem::path &input, const std::filesystem::path &output,
             const ConversionControl &control) {
    if (begins(input, "fail"))
        throw processorError("acted failure");
    if (begins(input, "stuck"))
        neverEnd();
    if (begins(input, "slow"))
        return reportFrames(control);
    std::ofstream(output) << "converted";
}

MediaOperations acted() {
    const auto video = [](const ConversionSettings &, const auto &input, const auto &output,
                          const ConversionControl &control, SystemVersion) { convert(input, output, control); };
    const auto photo = [](const ConversionSettings &, const auto &input, const auto &output) {
        convert(input, output, {});
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
