// SPDX-License-Identifier: GPL-3.0-or-later
// lumetwin-batch with fake conversions. The beginning of a file's name decides what happens to it:
//   fail…     the conversion throws an error
//   slow…     frames are reported until the run is stopped
//   stuck…    the conversion never ends and ignores cancelling
//   warn…     is written with a warning and a note
//   fast…     is written with the warning that it plays too fast
//   note…     is written with a note
//   plain…    is not spatial (a folder is not spatial either)
// Any other file is written at once.
#include "engine/ConversionInput.h"
#include "engine/inspection/Inspection.h"
#include "engine/inspection/MediaKinds.h"
#include "engine/texts/ProcessorError.h"
#include "media/InputFile.h"
#include "media/OutputFile.h"
#include "tools/Commands.h"

#include <array>
#include <chrono>
#include <thread>
#include <vector>

using namespace lumetwin;

namespace {

bool nameBeginsWith(const std::filesystem::path &file, const char *word) {
    return file.filename().string().rfind(word, 0) == 0;
}

void reportFrames(const ConversionControl &control) {
    for (std::int64_t frame = 0; !control.cancelled(); frame += 8) {
        control.onFrameProgress(frame % 1000, 1000);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

[[noreturn]] void sleepForEver() {
    for (;;)
        std::this_thread::sleep_for(std::chrono::seconds(1));
}

std::vector<Warning> warningsFor(const std::filesystem::path &input) {
    std::vector<Warning> warnings;
    if (nameBeginsWith(input, "warn"))
        warnings.push_back({WarningKind::framesMissing, {std::int64_t{90}, std::int64_t{120}}});
    if (nameBeginsWith(input, "fast"))
        warnings.push_back({WarningKind::speedChanged, {1.5}});
    if (nameBeginsWith(input, "warn") || nameBeginsWith(input, "note"))
        warnings.push_back({WarningKind::chaptersLeft, {std::int64_t{3}}});
    return warnings;
}

Outcome convert(const ConversionSettings &, const media::InputFile &file, const media::OutputFile &output,
                const ConversionControl &control, SystemVersion) {
    const std::filesystem::path &input = file.path();
    if (nameBeginsWith(input, "fail"))
        throw processorError("acted failure");
    if (nameBeginsWith(input, "stuck"))
        sleepForEver();
    if (nameBeginsWith(input, "slow")) {
        reportFrames(control);
        return {.written = false, .framesWritten = 8, .framesExpected = 1000, .warnings = {}};
    }
    constexpr std::array<std::uint8_t, 9> content{'c', 'o', 'n', 'v', 'e', 'r', 't', 'e', 'd'};
    output.writeAt(0, content);
    if (isPhotoFile(input))
        return Outcome::ofPhoto(warningsFor(input));
    return {.written = true, .framesWritten = 90, .framesExpected = 120, .warnings = warningsFor(input)};
}

MediaFacts look(const media::InputFile &file) {
    MediaFacts facts;
    facts.kind = isPhotoFile(file.path()) ? MediaFacts::Kind::photo : MediaFacts::Kind::video;
    facts.isReadable = lookAt(file).isReadable;
    facts.isSpatial = !nameBeginsWith(file.path(), "plain");
    return facts;
}

MediaOperations fakeOperations() {
    return {.look = look,
            .lookClosely = look,
            .examine = [](const ConversionInput &, const StereoLayout &) { return StereoFindings(); },
            .measure = {},
            .convertSpatialVideoToSBS = convert,
            .convertSBSVideoToSpatial = convert,
            .convertSpatialPhotoToSBS = convert,
            .convertSBSImageToSpatial = convert};
}

} // namespace

int main(int count, char **arguments) {
    return batch::runBatchTool(count, arguments, fakeOperations);
}
