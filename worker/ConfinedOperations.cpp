// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/ConfinedOperations.h"

#include "engine/ConversionInput.h"
#include "worker/parent/WorkerProgram.h"
#include "worker/parent/Workers.h"

#include <algorithm>
#include <thread>
#include <utility>

#include <unistd.h>

namespace lumetwin::worker {
namespace {

/// One for each processor, as far as memory suffices: each worker may need some hundred MiB.
int photosAtOnce() {
    constexpr long most = 8;
    constexpr long bytesForEach = 1L << 29;
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long roomFor = pages > 0 ? pages / (bytesForEach / sysconf(_SC_PAGESIZE)) : 1;
    const auto processors = static_cast<long>(std::thread::hardware_concurrency());
    return static_cast<int>(std::clamp(std::min(processors, roomFor), 1L, most));
}

MediaOperations::Converter converter(const std::shared_ptr<Workers> &workers, ConversionKind kind) {
    return [workers, kind](const ConversionSettings &settings, const ConversionInput &input,
                           const media::OutputFile &output, const ConversionControl &control, SystemVersion system) {
        return workers->convert(kind, settings, input, output, control, system);
    };
}

} // namespace

MediaOperations confinedOperations(std::shared_ptr<Workers> workers) {
    return {.look = [workers](const media::InputFile &input) { return workers->look(input); },
            .lookClosely = [workers](const ConversionInput &input) { return workers->lookClosely(input); },
            .examine = [workers](const ConversionInput &input,
                                 const StereoLayout &layout) { return workers->examine(input, layout); },
            .measure = [workers](const media::InputFile &input) { return workers->measure(input); },
            .drawPreview = [workers](const ConversionInput &input, const PreviewRequest &request,
                                     const media::OutputFile &pixels) { return workers->draw(input, request, pixels); },
            .convertSpatialVideoToSBS = converter(workers, ConversionKind::spatialVideoToSBS),
            .convertSBSVideoToSpatial = converter(workers, ConversionKind::sbsVideoToSpatial),
            .convertSpatialPhotoToSBS = converter(workers, ConversionKind::spatialPhotoToSBS),
            .convertSBSImageToSpatial = converter(workers, ConversionKind::sbsImageToSpatial),
            .photosAtOnce = photosAtOnce()};
}

MediaOperations confinedOperations() {
    return confinedOperations(std::make_shared<Workers>(workerProgram()));
}

std::string confinementDescription() {
    return describe(Workers(workerProgram()).confinement());
}

} // namespace lumetwin::worker
